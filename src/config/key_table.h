#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "config/parse_number.h"
#include "config/settings.h"
#include "signal/protocol_params.h"

namespace keplo {

// All keys of keplo.cfg, in the order of the file: the search for each begins where the previous one was
// found.

/// A key of [General].
struct SettingKey {
  std::string_view Name, Search;  // without and with its =
  std::string_view Takes;         // the permitted values, for a person
  bool (*Fits)(std::string_view text, std::int64_t number);
  void (*Take)(std::string_view value, Settings& settings);
  bool Late = false;  // older files lack it; it may be anywhere in [General]
};

template <std::int64_t kLeast, std::int64_t kMost>
bool IsWithin(std::string_view /*text*/, std::int64_t number) {
  return number >= kLeast && number <= kMost;
}
bool IsInterfaceType(std::string_view text, std::int64_t number);
/// Whether the text has a protocol with this index.
bool IsProtocolIndex(std::string_view text, std::int64_t number);

inline constexpr auto kSettingKeys = std::to_array<SettingKey>({
    {"COMPORT", "COMPORT=", "a serial port, 1 to 30", IsWithin<1, 30>,
     [](std::string_view value, Settings& settings) {
       settings.ComPortNr = WithoutFraction<std::int32_t>(value);
     }},
    {"PROTOCOL", "PROTOCOL=", "the place of a protocol in the list of 'keplo protocols', counted from 0",
     IsProtocolIndex,
     [](std::string_view value, Settings& settings) {
       settings.ProtocolIndex = WithoutFraction<std::int16_t>(value);
     }},
    {"PROCDELAY", "PROCDELAY=", "a delay, 0 to 100", IsWithin<0, 100>,
     [](std::string_view value, Settings& settings) {
       settings.ProcDelay = WithoutFraction<std::int16_t>(value);
     }},
    {"ITYPE", "ITYPE=", "0 or 8 for the standard or the mouse receiver, 1 more for output on TxD",
     IsInterfaceType,
     [](std::string_view value, Settings& settings) {
       settings.InterfaceType = Rounded<std::int32_t>(value);
       settings.ReceiverKind = ReceiverKindOf(settings.InterfaceType);
     }},
    {"BEEPON", "BEEPON=", "0 or 1", IsWithin<0, 1>,
     [](std::string_view value, Settings& settings) {
       const int beep = Rounded<int>(value);
       if (beep == 0 || beep == 1) settings.BeepOn = beep == 1;
     }},
    {"VEXIL", "VEXIL=", "0 for no zone hardware, or a zone, 1 to 8", IsWithin<0, 8>,
     [](std::string_view value, Settings& settings) { settings.VexilMode = Rounded<std::int16_t>(value); }},
    {"ANALYSIS", "ANALYSIS=", "0 for the first analysis, 1 for the second look", IsWithin<0, 1>,
     [](std::string_view value, Settings& settings) {
       settings.Analysis = Rounded<int>(value) == 1 ? Analysis::Second : Analysis::First;
     },
     true},
});

/// Every protocol section begins with these two: its description and its generic protocol.
inline constexpr std::string_view kDescriptionMark = "#";
inline constexpr std::string_view kGenericKey = "GPROTO=";

/// A key of a protocol section: a number or a pattern.
struct ParameterKey {
  std::string_view Search;  // the key with its =
  std::int16_t ProtocolParams::*Number = nullptr;
  std::string ProtocolParams::*Pattern = nullptr;
};

inline constexpr auto kParameterKeys = std::to_array<ParameterKey>({
    {"SENDPLS=", &ProtocolParams::SENDPLS},
    {"REPEAT=", &ProtocolParams::REPEAT},
    {"BITG=", nullptr, &ProtocolParams::BITG},
    {"BIT0=", nullptr, &ProtocolParams::BIT0},
    {"BIT1=", nullptr, &ProtocolParams::BIT1},
    {"GREPEAT=", &ProtocolParams::GREPEAT},
});

}  // namespace keplo
