#include "shell/dispatch.h"

#include <optional>

#include "config/lookup.h"
#include "config/sections.h"
#include "config/settings.h"
#include "events/event_row.h"
#include "signal/zone_link.h"

namespace keplo {

namespace {

constexpr int kHeadLength = 100;                   // characters; a match in them is among the settings
constexpr std::int32_t kPauseAfterEvent = 200000;  // microseconds; separates the events of a held key

std::optional<std::string> FindReference(const std::string& code, Analysis readBy,
                                         const std::string& cfgText) {
  const std::optional<FoundCommand> found = FindCommand(cfgText, code, kHeadLength, readBy);
  if (!found || found->Protocol.empty() || found->Command.empty() || IsGeneral(found->Protocol)) return {};
  return found->Reference();
}

bool IsBoundTo(const ui::ListView& list, int row, const std::string& reference) {
  return list.Text(row, kInfraredCommand) == reference && IsTrue(list.Text(row, kActivated));
}

/// Asks the zone hardware if a row requires a zone.
DispatchEnd TestZone(const ui::ListView& list, int row, const Settings& settings, Win32Ser& line) {
  const int zone = ZoneNumber(list.Text(row, kZone));
  if (zone == 0 || settings.VexilMode <= 0) return DispatchEnd::Walked;
  const std::int16_t from = QueryZone(line);
  if (from == kNoZone) return DispatchEnd::NoZoneAnswer;
  return from == zone ? DispatchEnd::Walked : DispatchEnd::OtherZone;
}

}  // namespace

void DispatchCode(const std::string& code, Analysis readBy, const std::string& cfgText,
                  const Settings& settings, const ui::ListView& list, Win32Ser& line, HostInputEvent& event,
                  const std::function<void(HostInputEvent&)>& raise, DispatchReport& report) {
  const std::optional<std::string> reference = FindReference(code, readBy, cfgText);
  report.Ended = reference ? DispatchEnd::Walked : DispatchEnd::NotStored;
  if (!reference) return;
  report.Reference = *reference;

  // Handlers may add rows, which only count for the next press, or remove some.
  const int rows = list.Count();
  for (int row = 1; row <= rows && row <= list.Count(); ++row) {
    if (!IsBoundTo(list, row, *reference)) continue;
    report.Ended = TestZone(list, row, settings, line);
    if (report.Ended != DispatchEnd::Walked) return;
    event.EventID = list.Text(row, kEventID);
    event.EventCommand = list.Text(row, kInfraredCommand);
    if (settings.BeepOn) line.SpeakBeep(1000, 50);
    ++report.Raised;
    raise(event);
    line.uDelay(kPauseAfterEvent);
  }
  if (settings.BeepOn && report.Raised == 0) line.SpeakBeep(5000, 50);
}

}  // namespace keplo
