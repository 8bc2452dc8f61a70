#pragma once

#include <QTcpServer>
#include <QTcpSocket>
#include <deque>
#include <string>
#include <vector>

#include "host_program/web/request_budget.h"
#include "host_program/web/request_check.h"

namespace keplo::host {

/// Protects the web server, which has no limits of its own. A connection is only passed on to the server once
/// a complete and valid request has been received, so that the server never waits for a client; it is closed
/// after the answer. If there are too many connections, one that was refused but not closed by its client is
/// dropped, otherwise the one that has waited longest for its request.
class WebGate : public QTcpServer {
 public:
  static constexpr int kMostConnections = 16;
  static constexpr double kRequestsPerSecond = 200;
  static constexpr int kSecondsForRequest = 5;
  static constexpr int kSecondsForAnswer = 10;

  /// @param names additional valid values of the Host header
  explicit WebGate(std::vector<std::string> names);

 protected:
  void incomingConnection(qintptr handle) override;

 private:
  /// Checks what has been received on a connection.
  RequestVerdict CheckReceived(QTcpSocket& socket) const;
  void PassOn(QTcpSocket* socket);
  void Forget(const QTcpSocket* socket);
  /// @return false if there is no idle connection
  bool DropIdleConnection();
  void Refuse(QTcpSocket* socket, const RequestVerdict& verdict);

  std::vector<std::string> names_;
  RequestBudget budget_{kRequestsPerSecond};
  int connections_ = 0;
  std::deque<QTcpSocket*> waiting_;    // for a complete request, oldest first
  std::deque<QTcpSocket*> lingering_;  // refused, oldest first
};

}  // namespace keplo::host
