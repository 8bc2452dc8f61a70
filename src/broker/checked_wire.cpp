#include "broker/checked_wire.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <utility>

#include "failure.h"

namespace keplo::broker {

namespace {

using Piece = std::array<char, 16'384>;

/// No more is taken from the library while this much waits to be sent.
constexpr std::size_t kMostOut = 65'536;

bool IsNotReady(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR || error == ENOTCONN;
}

[[noreturn]] void Fail() {
  throw Failure(errno, "No connection within this program: " + std::string(std::strerror(errno)) + ".");
}

int Copy(int socket) {
  const int copy = fcntl(socket, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) Fail();
  return copy;
}

}  // namespace

std::array<int, 2> CheckedWire::Pair() {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, ends.data()) != 0) Fail();
  return ends;
}

CheckedWire::CheckedWire(int socket, int version, const BrokerSettings& settings, std::array<int, 2> ends)
    : broker_(Copy(socket)), library_(ends[0]), socket_(socket), check_(version) {
  const Descriptor end(ends[1]);
  if (dup3(end.Number(), socket, O_CLOEXEC) < 0) Fail();
  if (settings.Tls) tls_.emplace(settings);
}

int CheckedWire::In() {
  Piece piece;
  const ssize_t count = recv(broker_.Number(), piece.data(), piece.size(), MSG_DONTWAIT);
  if (count < 0 && IsNotReady(errno)) return 0;
  if (count < 0 && errno != ECONNRESET) return errno;
  ended_ = ended_ || count <= 0;
  // If it hangs up before the handshake is complete, it may not support TLS at all.
  if (ended_) return tls_ && !tls_->IsUp() ? kNotSecure : 0;
  return CheckReceived({piece.data(), static_cast<std::size_t>(count)});
}

int CheckedWire::CheckReceived(std::string_view bytes) {
  if (!tls_) return check_.Take(bytes) ? 0 : kNotMqtt;
  const bool isSecure = tls_->Receive(bytes);
  ended_ = ended_ || tls_->HasEnded();
  const std::string plain = std::exchange(tls_->Plain(), {});
  if (!check_.Take(plain)) return kNotMqtt;
  return isSecure ? 0 : kNotSecure;
}

bool CheckedWire::PassToLibrary() {
  std::string& whole = check_.Whole();
  const ssize_t given = send(library_.Number(), whole.data(), whole.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
  if (given > 0) whole.erase(0, static_cast<std::size_t>(given));
  if (ended_ && whole.empty()) {
    shutdown(library_.Number(), SHUT_WR);
    return true;
  }
  int waiting = 0;
  return ioctl(socket_, FIONREAD, &waiting) == 0 && waiting > 0;
}

/// Moves the library's output to out_.
/// @return false if there is no secure connection
bool CheckedWire::CollectOutput() {
  // Without a connection, this is the TLS alert that tells the broker's administrator why.
  if (tls_) out_ += std::exchange(tls_->Encrypted(), {});
  if (tls_ && !tls_->Fault().empty()) return false;
  Piece piece;
  const bool fits = out_.size() < kMostOut && (!tls_ || tls_->IsUp());
  const ssize_t count = fits ? recv(library_.Number(), piece.data(), piece.size(), MSG_DONTWAIT) : 0;
  const std::string_view written(piece.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
  if (!tls_) {
    out_ += written;
    return true;
  }
  const bool isSecure = written.empty() || tls_->Send(written);
  out_ += std::exchange(tls_->Encrypted(), {});
  return isSecure;
}

int CheckedWire::Out() {
  for (;;) {
    const bool isSecure = CollectOutput();
    if (out_.empty()) return isSecure ? 0 : kNotSecure;
    const ssize_t sent = send(broker_.Number(), out_.data(), out_.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0 && errno == EPIPE) {
      // What the broker sent before it hung up can still be read.
      out_.clear();
      return 0;
    }
    if (sent < 0) return IsNotReady(errno) ? 0 : errno;
    out_.erase(0, static_cast<std::size_t>(sent));
  }
}

}  // namespace keplo::broker
