#include "host_program/web/web_gate.h"

#include <sys/socket.h>

#include <QHostAddress>
#include <QTimer>
#include <chrono>
#include <utility>

namespace keplo::host {

namespace {

constexpr int kRefusedRequest = 400, kOverloaded = 503;
constexpr int kSecondsToLinger = 2;

void EndAfter(QTcpSocket* socket, int seconds) {
  QTimer::singleShot(seconds * 1000, socket, [socket] { socket->abort(); });
}

std::string Numeric(const QHostAddress& address) {
  bool isIPv4 = false;
  const quint32 number = address.toIPv4Address(&isIPv4);  // also for an IPv4 client on an IPv6 socket
  return (isIPv4 ? QHostAddress(number) : address).toString().toStdString();
}

QByteArray RefusalText(const RequestVerdict& verdict) {
  const std::string text = verdict.Reason + "\n";
  return QByteArray::fromStdString("HTTP/1.1 " + std::to_string(verdict.Status) +
                                   " Refused\r\nConnection: close\r\nContent-Type: text/plain\r\n" +
                                   "X-Content-Type-Options: nosniff\r\nCache-Control: no-store\r\n" +
                                   "Content-Length: " + std::to_string(text.size()) + "\r\n\r\n" + text);
}

}  // namespace

WebGate::WebGate(std::vector<std::string> names) : names_(std::move(names)) {}

void WebGate::incomingConnection(qintptr handle) {
  auto* socket = new QTcpSocket(this);
  ++connections_;
  connect(socket, &QObject::destroyed, this, [this, socket] {
    --connections_;
    Forget(socket);
  });
  connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
  connect(socket, &QTcpSocket::disconnected, this, [this, socket] { Forget(socket); });
  const bool hasSpace = connections_ <= kMostConnections || DropIdleConnection();
  if (!socket->setSocketDescriptor(handle) || !hasSpace) {
    socket->abort();
    socket->deleteLater();
    return;
  }
  waiting_.push_back(socket);
  // One byte more than a request may have, to detect larger ones.
  socket->setReadBufferSize(kMostHeadBytes + kMostBodyBytes + 1);
  EndAfter(socket, kSecondsForRequest + kSecondsForAnswer);

  auto* watch = new QObject(socket);
  QTimer::singleShot(kSecondsForRequest * 1000, watch, [socket] { socket->abort(); });
  connect(socket, &QTcpSocket::readyRead, watch, [this, socket, watch] {
    const RequestVerdict verdict = CheckReceived(*socket);
    if (verdict.Answer == RequestVerdict::Incomplete) return;
    delete watch;
    Forget(socket);
    if (verdict.Answer == RequestVerdict::Refused) {
      Refuse(socket, verdict);
    } else {
      PassOn(socket);
    }
  });
}

void WebGate::Forget(const QTcpSocket* socket) {
  std::erase(waiting_, socket);
  std::erase(lingering_, socket);
}

bool WebGate::DropIdleConnection() {
  const std::deque<QTcpSocket*>& idle = lingering_.empty() ? waiting_ : lingering_;
  if (idle.empty()) return false;
  idle.front()->abort();
  return true;
}

RequestVerdict WebGate::CheckReceived(QTcpSocket& socket) const {
  const OwnAddress own{Numeric(socket.localAddress()), socket.localPort(), socket.localAddress().isLoopback(),
                       names_};
  const QByteArray start = socket.peek(kMostHeadBytes);
  RequestVerdict verdict = CheckRequest({start.constData(), static_cast<std::size_t>(start.size())}, own);
  if (verdict.Answer != RequestVerdict::HeadComplete) return verdict;
  const auto available = static_cast<std::size_t>(socket.bytesAvailable());
  if (available < verdict.TotalBytes) verdict.Answer = RequestVerdict::Incomplete;
  if (available > verdict.TotalBytes) {
    return {RequestVerdict::Refused, kRefusedRequest, "A connection carries one request.", 0};
  }
  return verdict;
}

void WebGate::PassOn(QTcpSocket* socket) {
  if (!budget_.Take(std::chrono::steady_clock::now().time_since_epoch())) {
    Refuse(socket, {RequestVerdict::Refused, kOverloaded, "Too many requests; ask again in a second.", 0});
    return;
  }
  addPendingConnection(socket);
  Q_EMIT newConnection();
  Q_EMIT socket->readyRead();    // which the server has missed
  socket->disconnectFromHost();  // after the answer has been sent
}

/// Answers, and closes the connection later: closing it with unread bytes would discard the answer at the
/// client.
void WebGate::Refuse(QTcpSocket* socket, const RequestVerdict& verdict) {
  socket->readAll();
  connect(socket, &QTcpSocket::readyRead, socket, [socket] { socket->readAll(); });
  EndAfter(socket, kSecondsToLinger);
  lingering_.push_back(socket);
  socket->write(RefusalText(verdict));
  socket->flush();
  ::shutdown(static_cast<int>(socket->socketDescriptor()), SHUT_WR);
}

}  // namespace keplo::host
