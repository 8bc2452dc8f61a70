#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <deque>
#include <string>
#include <vector>

#include "host_program/web/request_budget.h"
#include "host_program/web/request_check.h"

namespace keplo::host {

/// The door before the web server, which has no limits of its own. It holds a connection back until one
/// whole request lies in its buffer, within the limits of size, time and number and for the host's own name,
/// and only then hands it on; the connection ends after the answer. So the server never waits for a client.
/// Where there are too many, one that was refused and not left by its client gives way, else the one that has
/// waited longest for its request.
class WebGate : public QTcpServer {
 public:
  static constexpr int kMostConnections = 16;
  static constexpr double kRequestsPerSecond = 200;
  static constexpr int kSecondsForRequest = 5;
  static constexpr int kSecondsForAnswer = 10;

  /// @param names further values of a Host header that are the host's own
  explicit WebGate(std::vector<std::string> names);

 protected:
  void incomingConnection(qintptr handle) override;

 private:
  /// @return what is to be done with the connection; Incomplete to wait for more
  RequestVerdict Look(QTcpSocket& socket) const;
  void HandOn(QTcpSocket* socket);
  void Forget(const QTcpSocket* socket);
  /// @return false if there is none that can
  bool LetOneGiveWay();
  void Refuse(QTcpSocket* socket, const RequestVerdict& verdict);

  std::vector<std::string> names_;
  RequestBudget budget_{kRequestsPerSecond};
  int connections_ = 0;
  std::deque<QTcpSocket*> waiting_;    // for a whole request, the longest first
  std::deque<QTcpSocket*> lingering_;  // refused, the longest first
};

}  // namespace keplo::host
