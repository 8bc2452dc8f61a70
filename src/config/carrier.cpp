#include "config/carrier.h"

#include "config/cfg_text.h"
#include "config/parse_number.h"
#include "config/sections.h"
#include "signal/protocol_params.h"

namespace keplo {

namespace {

constexpr std::string_view kCarrierKey = "CARRIER=";

}  // namespace

std::int32_t CarrierOf(std::string_view text, std::string_view protocol) {
  const auto section = FindSection(text, protocol);
  if (!section) return kUsualCarrier;
  const std::string_view upToNext = text.substr(0, static_cast<std::size_t>(section->End - 1));
  const int lastKey = FindNoCase("GREPEAT=", upToNext, section->Begin);
  const int value = FindNoCase("\n" + std::string(kCarrierKey), upToNext, lastKey);
  const std::string_view digits = GetLineAt(upToNext, value);
  if (digits.empty() || digits.front() < '0' || digits.front() > '9') return kUsualCarrier;
  return WithoutFraction<std::int32_t>(digits);
}

std::string CarrierLine(std::int32_t hertz) {
  if (hertz == kUsualCarrier) return {};
  return std::string(kCarrierKey) + " " + std::to_string(hertz) + "\r\n";
}

}  // namespace keplo
