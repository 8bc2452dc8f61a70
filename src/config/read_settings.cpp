#include "config/read_settings.h"

#include "config/numbers.h"
#include "config/setting_keys.h"

namespace keplo {

namespace {

struct Key {
  std::string_view Text;
  void (*Take)(std::string_view value, Settings& settings);
};

constexpr Key kStartUpKeys[] = {
    {"COMPORT=", [](std::string_view value,
                    Settings& settings) { settings.ComPortNr = WithoutFraction<std::int32_t>(value); }},
    {"PROTOCOL=", [](std::string_view value,
                     Settings& settings) { settings.ProtocolIndex = WithoutFraction<std::int16_t>(value); }},
    {"PROCDELAY=", [](std::string_view value,
                      Settings& settings) { settings.ProcDelay = WithoutFraction<std::int16_t>(value); }},
    {"ITYPE=",
     [](std::string_view value, Settings& settings) {
       settings.InterfaceType = Rounded<std::int32_t>(value);
       settings.ReceiverKind = ReceiverKindOf(settings.InterfaceType);
     }},
    {"BEEPON=",
     [](std::string_view value, Settings& settings) {
       const int beep = Rounded<int>(value);
       if (beep == 0 || beep == 1) settings.BeepOn = beep == 1;
     }},
    {"VEXIL=",
     [](std::string_view value, Settings& settings) { settings.VexilMode = Rounded<std::int16_t>(value); }},
};

/// Files of before the second look have no key for it, so that it may be missing and may stand anywhere in
/// [General].
Analysis AnalysisOf(std::string_view text) {
  const std::optional<std::string> value = SettingValue(text, *FindSettingKey("ANALYSIS"));
  return value && Rounded<int>(*value) == 1 ? Analysis::Second : Analysis::First;
}

}  // namespace

SettingsReading ReadSettings(const CfgStore& store, Settings& settings) {
  if (FindNoCase("[End]", store.CfgText, 1) == kNowhere) return {"[End]"};
  int position = FindNoCase("[General]", store.CfgText, 1);
  if (position == kNowhere) return {"[General]"};
  for (const Key& key : kStartUpKeys) {
    const int behind = FindNoCase(key.Text, store.CfgText, position);
    if (behind == kNowhere) return {key.Text, position};
    position = behind;
    key.Take(GetLineAt(store.CfgText, position), settings);
  }
  settings.Analysis = AnalysisOf(store.CfgText);
  return {};
}

}  // namespace keplo
