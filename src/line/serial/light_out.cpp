#include "line/serial/light_out.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <cmath>

#include "line/real_time.h"
#include "line/serial/held_signals.h"

namespace keplo {

namespace {

using std::chrono_literals::operator""us;
using std::chrono_literals::operator""ms;
using std::chrono::nanoseconds;

/// Time to get ready before the first slot.
constexpr auto kLead = 1ms;
/// Start bit, seven data bits and stop bit at 115,200 baud.
constexpr double kCharacterTime = 9 * 1e9 / 115'200;  // nanoseconds
/// Low bit first, start and stop bit around: 0 11 0 11 0 11, three flashes of 8.7 us in 78.1 us.
constexpr char kCarrier = 0x5B;
/// Waiting out a long space in steps lets a request to end come through.
constexpr auto kLongestSleep = 50ms;

/// @return false if the program is asked to end before that time
bool SleepUntil(DeviceCalls& calls, const HeldSignals& signals, nanoseconds time) {
  while (!signals.Pending()) {
    const nanoseconds now = calls.Now();
    if (time - now <= kLongestSleep) {
      calls.SleepUntil(time);
      return true;
    }
    calls.SleepUntil(now + kLongestSleep);
  }
  return false;
}

/// DTR is off again whatever happens.
class DarkAtEnd {
 public:
  explicit DarkAtEnd(const SerialPort& port) : port_(port) {}
  ~DarkAtEnd() { port_.SetLine(TIOCM_DTR, false); }
  DarkAtEnd(const DarkAtEnd&) = delete;
  DarkAtEnd& operator=(const DarkAtEnd&) = delete;

 private:
  const SerialPort& port_;
};

std::size_t CharactersIn(nanoseconds light) {
  return static_cast<std::size_t>(
      std::max(std::lround(static_cast<double>(light.count()) / kCharacterTime), 1L));
}

}  // namespace

std::vector<LitSlots> LitSlotsOf(std::string_view bytes) {
  std::vector<LitSlots> lit;
  for (std::size_t slot = 0; slot < bytes.size() * 8; ++slot) {
    if ((static_cast<unsigned char>(bytes[slot / 8]) & (0x80U >> slot % 8)) == 0) continue;
    if (!lit.empty() && lit.back().End == slot) {
      ++lit.back().End;
    } else {
      lit.push_back({slot, slot + 1});
    }
  }
  return lit;
}

bool PlayOnDtr(DeviceCalls& calls, const SerialPort& port, std::string_view bytes,
               std::chrono::microseconds slot) {
  const std::vector<LitSlots> lit = LitSlotsOf(bytes);
  const HeldSignals signals;
  const Hurry hurry;
  const DarkAtEnd dark(port);
  const nanoseconds start = calls.Now() + kLead;
  const auto at = [&](std::size_t slots) { return start + static_cast<std::int64_t>(slots) * slot; };
  for (const LitSlots& light : lit) {
    if (!SleepUntil(calls, signals, at(light.Begin))) return true;
    if (!port.SetLine(TIOCM_DTR, true)) return false;
    if (!SleepUntil(calls, signals, at(light.End))) return true;
    if (!port.SetLine(TIOCM_DTR, false)) return false;
  }
  SleepUntil(calls, signals, at(bytes.size() * 8));
  return true;
}

bool PlayOnTxd(DeviceCalls& calls, const SerialPort& port, std::string_view bytes,
               std::chrono::microseconds slot) {
  const std::vector<LitSlots> lit = LitSlotsOf(bytes);
  const HeldSignals signals;
  const Hurry hurry;
  const nanoseconds start = calls.Now() + kLead;
  const auto at = [&](std::size_t slots) { return start + static_cast<std::int64_t>(slots) * slot; };
  for (const LitSlots& light : lit) {
    // A space is a wait, never characters: each of those has a start bit, which is light.
    if (!SleepUntil(calls, signals, at(light.Begin))) return true;
    const std::string carrier(CharactersIn(at(light.End) - at(light.Begin)), kCarrier);
    if (!port.WriteAll(carrier)) return false;
  }
  SleepUntil(calls, signals, at(bytes.size() * 8));
  port.Drain();
  return true;
}

}  // namespace keplo
