#include "synth/sample_presses.h"

#include <array>

#include "signal/decode.h"
#include "signal/first_analysis.h"

namespace keplo {

namespace {

// NEC: device 4. SONY: device 1. RC5: system 0.
constexpr std::array kSamplePresses = {
    SamplePress{"nec_tv_power.mode2", kNec, "TV power", "00100000110111110001000011101111", {115, 12, 0.0}},
    SamplePress{
        "nec_tv_volume_up.mode2", kNec, "TV volume up", "00100000110111110100000010111111", {35, 6, 0.026}},
    SamplePress{"nec_tv_volume_down.mode2",
                kNec,
                "TV volume down",
                "00100000110111111100000000111111",
                {15, 4, 0.04}},
    SamplePress{"nec_tv_mute.mode2", kNec, "TV mute", "00100000110111111001000001101111", {70, 20, -0.01}},
    SamplePress{
        "nec_tv_channel_up.mode2", kNec, "TV channel up", "00100000110111110000000011111111", {90, 15, 0.01}},
    SamplePress{"sony_tv_power.mode2", kSony, "TV power", "101010010000", {65, 4, 0.0}},
    SamplePress{"sony_tv_volume_up.mode2", kSony, "TV volume up", "010010010000", {75, 10, 0.006}},
    SamplePress{"sony_tv_volume_down.mode2", kSony, "TV volume down", "110010010000", {-40, 5, -0.018}},
    SamplePress{"sony_tv_mute.mode2", kSony, "TV mute", "001010010000", {130, 15, -0.02}},
    SamplePress{"sony_tv_1.mode2", kSony, "TV 1", "000000010000", {55, 8, 0.02}},
    SamplePress{"rc5_tv_standby.mode2", kRc5, "TV standby", "11000000001100", {60, 20, -0.052}},
    SamplePress{"rc5_tv_volume_up.mode2", kRc5, "TV volume up", "11100000010000", {70, 10, -0.042}},
    SamplePress{"rc5_tv_volume_down.mode2", kRc5, "TV volume down", "11000000010001", {-20, 10, -0.055}},
    SamplePress{"rc5_tv_mute.mode2", kRc5, "TV mute", "11100000001101", {120, 15, 0.0}},
    SamplePress{"rc5_tv_channel_up.mode2", kRc5, "TV channel up", "11000000100000", {90, 20, 0.01}},
};

std::string_view IndexName(std::int16_t kind) {
  switch (kind) {
    case kNec:
      return "nec";
    case kSony:
      return "sony12";
    default:
      return "rc5";
  }
}

}  // namespace

std::span<const SamplePress> SamplePresses() { return kSamplePresses; }

std::string SamplePress::Code() const {
  std::string code(Bits);
  if (Kind == kRc5) code[kToggleBitOffset] = '0';
  return code;
}

std::string SamplePress::Text() const {
  return "# " + std::string(Name) + ", " + std::string(ProtoKindName(Kind)) + ' ' + std::string(Bits) + '\n' +
         Mode2Text(SynthPress(Kind, Bits, Options));
}

std::string SampleIndex() {
  std::string text;
  for (const SamplePress& press : kSamplePresses) {
    const auto field = [&](std::string_view name, std::string_view value) {
      text += "  \"" + std::string(name) + "\": \"" + std::string(value) + '"';
    };
    text += text.empty() ? "[\n {\n" : ",\n {\n";
    field("file", press.File);
    text += ",\n";
    field("protocol", IndexName(press.Kind));
    text += ",\n";
    field("name", press.Name);
    text += ",\n";
    field("bits", press.Bits);
    text += "\n }";
  }
  return text + "\n]\n";
}

}  // namespace keplo
