#include "line/serial/serial_port.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "line/device_access.h"
#include "line/held_signals.h"
#include "line/serial/lock_file.h"

namespace keplo {

namespace {

constexpr int kOpenAttempts = 2;
/// Longer than any driver's buffer takes to run empty: a port that takes nothing for so long is gone.
constexpr std::chrono::seconds kLongestWait{2};
constexpr int kStopLook = 50;  // milliseconds between two looks whether the program is to end

Refusal WhyNotOpened(const std::string& device, int error) {
  if (error == EBUSY || error == EWOULDBLOCK) return WhyBusy(device, HolderOfDevice(device));
  if (error == EIO)
    return {device +
            " has no serial hardware behind it, or it is gone. Plug it in again, or choose another port."};
  return {WhyNoAccess(device, error)};
}

/// Why a port must not even be opened, such as a program that has it.
Refusal WhyUntouchable(const std::string& device) {
  if (IsNoTerminal(device)) return {WhyNoAccess(device, ENOTTY)};
  std::string holder = HolderOfLockFile(device);
  if (holder.empty()) holder = HolderOfDevice(device);
  if (holder.empty()) holder = HolderOfLock(device);
  return holder.empty() ? Refusal() : WhyBusy(device, holder);
}

}  // namespace

SerialPort::SerialPort(DeviceCalls& calls, int descriptor, std::string lockFile)
    : calls_(calls), lockFile_(std::move(lockFile)), descriptor_(calls, descriptor) {}

Refusal SerialPort::Foresee(const std::string& device) {
  Refusal refusal = WhyUntouchable(device);
  if (!refusal.Why.empty() || faccessat(AT_FDCWD, device.c_str(), R_OK | W_OK, AT_EACCESS) == 0)
    return refusal;
  return {WhyNoAccess(device, errno)};
}

std::unique_ptr<SerialPort> SerialPort::Open(DeviceCalls& calls, const std::string& device,
                                             Refusal& refusal) {
  // An open raises DTR, which is light, and succeeds for root whatever the lock: so whoever has the port is
  // looked for before anything touches it.
  refusal = WhyUntouchable(device);
  if (!refusal.Why.empty()) return nullptr;
  int error = 0;
  for (int attempt = 0; attempt < kOpenAttempts; ++attempt) {
    // Without O_NONBLOCK an open waits for a carrier, which a receiver that rests at 0 never shows.
    const int descriptor = calls.Open(device, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
      refusal = WhyNotOpened(device, errno);
      return nullptr;
    }
    std::unique_ptr<SerialPort> port(new SerialPort(calls, descriptor, {}));
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
      // The open has raised DTR although the port has just become another's, most likely a host's of another
      // user, whose transmitter would be lit without end; a program that wants DTR up, as for a modem, can
      // connect again.
      port->SetLine(TIOCM_DTR, false);
      refusal = WhyNotOpened(device, EWOULDBLOCK);
      return nullptr;
    }
    const bool exclusive = calls.Ioctl(descriptor, TIOCEXCL, nullptr) == 0;
    if (exclusive && calls.Ioctl(descriptor, TCGETS, &port->found_) == 0) {
      port->configured_ = true;
      if (port->SetSpeed(Speed::Carrier) && port->FindModemLines()) {
        port->SetLine(TIOCM_DTR, false);
        port->lockFile_ = TakeLockFile(device);
        return port;
      }
    }
    // The settings of the last user hold until ours do: a key pressed in between hangs the port up, once.
    error = errno;
  }
  refusal = WhyNotOpened(device, error);
  return nullptr;
}

SerialPort::~SerialPort() {
  if (configured_) {
    SetLine(TIOCM_DTR, false);
    SetBreak(false);
    calls_.Ioctl(Descriptor(), TCFLSH, reinterpret_cast<void*>(TCOFLUSH));
    calls_.Ioctl(Descriptor(), TCSETS, &found_);
    calls_.Ioctl(Descriptor(), TIOCNXCL, nullptr);
  }
  ReleaseLockFile(lockFile_);
}

/// A terminal without modem lines says so; a name without hardware behind it gives EIO.
bool SerialPort::FindModemLines() {
  hasModemLines_ = Lines().has_value();
  return hasModemLines_ || errno == ENOTTY || errno == EINVAL;
}

std::optional<int> SerialPort::Lines() const {
  int lines = 0;
  if (calls_.Ioctl(Descriptor(), TIOCMGET, &lines) != 0) return std::nullopt;
  return lines;
}

bool SerialPort::SetLine(int line, bool on) const {
  if (!hasModemLines_) return true;
  return calls_.Ioctl(Descriptor(), on ? TIOCMBIS : TIOCMBIC, &line) == 0;
}

bool SerialPort::SetBreak(bool on) const {
  return calls_.Ioctl(Descriptor(), on ? TIOCSBRK : TIOCCBRK, nullptr) == 0;
}

std::optional<serial_icounter_struct> SerialPort::Counters() const {
  serial_icounter_struct counters{};
  if (calls_.Ioctl(Descriptor(), TIOCGICOUNT, &counters) != 0) return std::nullopt;
  return counters;
}

bool SerialPort::SetSpeed(Speed speed) {
  set_ = found_;
  cfmakeraw(&set_);
  set_.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | CSTOPB | CRTSCTS);
  // CLOCAL: the first mark of a press must not hang the port up. HUPCL: whatever ends this program, the
  // driver lets DTR go, and with it the light.
  set_.c_cflag |= CLOCAL | CREAD | HUPCL | (speed == Speed::Carrier ? CS7 : CS8);
  set_.c_cc[VMIN] = 0;
  set_.c_cc[VTIME] = 0;
  cfsetspeed(&set_, speed == Speed::Carrier ? B115200 : B9600);
  Drain();
  return calls_.Ioctl(Descriptor(), TCSETS, &set_) == 0;
}

bool SerialPort::WriteAll(const std::string& bytes) const {
  std::size_t written = 0;
  auto giveUp = calls_.Now() + kLongestWait;
  while (written < bytes.size()) {
    const ssize_t count = calls_.Write(Descriptor(), bytes.data() + written, bytes.size() - written);
    if (count > 0) {
      written += static_cast<std::size_t>(count);
      giveUp = calls_.Now() + kLongestWait;
      continue;
    }
    if (count == 0 || (errno != EAGAIN && errno != EINTR) || calls_.Now() >= giveUp) return false;
    if (HeldSignals::Pending()) {
      calls_.Ioctl(Descriptor(), TCFLSH, reinterpret_cast<void*>(TCOFLUSH));
      return true;
    }
    pollfd room = {Descriptor(), POLLOUT, 0};
    calls_.Poll(&room, 1, kStopLook);
    if ((room.revents & (POLLHUP | POLLERR)) != 0) return false;
  }
  return true;
}

void SerialPort::Drain() const { calls_.Ioctl(Descriptor(), TCSBRK, reinterpret_cast<void*>(1)); }

void SerialPort::DropInput() const { calls_.Ioctl(Descriptor(), TCFLSH, reinterpret_cast<void*>(TCIFLUSH)); }

}  // namespace keplo
