#include "shell/event_details.h"

#include "events/event_row.h"

namespace keplo {

bool DescribeEvent(const ui::ListView& list, const std::string& eventID, EventDetails& details) {
  const int row = list.FindRow(kEventID, eventID);
  if (row == 0) return false;
  details.EventName = list.Text(row, kEventName);
  details.EventDescription = list.Text(row, kEventDescription);
  details.EventCommand = list.Text(row, kInfraredCommand);
  details.Activated = IsTrue(list.Text(row, kActivated));
  details.Zone = ZoneNumber(list.Text(row, kZone));
  return true;
}

std::string HighlightedEvent(const ui::ListView& list) {
  const int row = list.SelectedRow();
  return row == 0 ? std::string() : list.Text(row, kEventID);
}

}  // namespace keplo
