#include "line/serial/light_out.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <cmath>

#include "line/slot_clock.h"

namespace keplo {

namespace {

using std::chrono::nanoseconds;

/// Time to get ready before the first slot.
constexpr std::chrono::milliseconds kLead{1};
/// Start bit, seven data bits and stop bit at 115,200 baud.
constexpr double kCharacterTime = 9 * 1e9 / 115'200;  // nanoseconds
/// Low bit first, start and stop bit around: 0 11 0 11 0 11, three flashes of 8.7 us in 78.1 us.
constexpr char kCarrier = 0x5B;

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

/// @return false if the device is gone
bool Light(const SerialPort& port, LightOutput output, const SlotClock& clock, const LitSlots& lit) {
  if (output == LightOutput::Txd) {
    // A space is a wait, never characters: each of those has a start bit, which is light.
    return port.WriteAll(std::string(CharactersIn(clock.At(lit.End) - clock.At(lit.Begin)), kCarrier));
  }
  const DarkAtEnd dark(port);
  if (!port.SetLine(TIOCM_DTR, true)) return false;
  clock.WaitFor(lit.End);
  return true;
}

}  // namespace

bool PlayLight(DeviceCalls& calls, const SerialPort& port, LightOutput output, std::string_view bytes,
               std::chrono::microseconds slot) {
  const std::vector<LitSlots> lit = LitSlotsOf(bytes);
  const SlotClock clock(calls, slot, kLead);
  for (const LitSlots& stretch : lit) {
    if (!clock.WaitFor(stretch.Begin)) return true;
    if (!Light(port, output, clock, stretch)) return false;
  }
  clock.WaitFor(bytes.size() * 8);
  if (output == LightOutput::Txd) port.Drain();
  return true;
}

}  // namespace keplo
