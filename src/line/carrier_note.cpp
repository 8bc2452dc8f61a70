#include "line/carrier_note.h"

#include <cstdlib>

#include "signal/protocol_params.h"

namespace keplo {

namespace {

constexpr std::int32_t kNearCarrier = 1'000;  // Hz; the pass band of a receiver is some kHz wide

}  // namespace

void CarrierNote::Tell(const TellUser& tell, const std::string& device, std::int32_t hertz) {
  if (told_ || !tell || std::abs(hertz - kUsualCarrier) <= kNearCarrier) return;
  told_ = true;
  tell(device + " cannot change its carrier: what should go out with " +
       (hertz == 0 ? std::string("none") : std::to_string(hertz) + " Hz") + " goes out with about " +
       std::to_string(kUsualCarrier) + " Hz, and may be heard less far.");
}

}  // namespace keplo
