#include <memory>

#include "events/event_row.h"
#include "shell/about_text.h"
#include "shell/keplo.h"

namespace keplo {

namespace {

constexpr int kRightButton = 2;

}  // namespace

void Keplo::ListView1_MouseDown(int button) {
  if (button == kRightButton) RightClickMenu.PopUp();
}

void Keplo::HelpMenu_Click() { windows_.Boxes.Message(AboutText(), "InputKeplo"); }

void Keplo::SwitchSelectedEvent(bool enabled) {
  if (ListView1.Count() == 0) return;
  const auto event = std::make_shared<clsKeploEvent>();
  event->Enabled = enabled;
  // Without a selected row, updating an event without an EventID reports the failure to the host.
  if (const int row = ListView1.SelectedRow(); row != 0) {
    event->EventName = ListView1.Text(row, kEventName);
    event->EventDescription = ListView1.Text(row, kEventDescription);
    event->IRCommand = ListView1.Text(row, kInfraredCommand);
    event->Zone = static_cast<std::int16_t>(ZoneNumber(ListView1.Text(row, kZone)));
    ListView1.SetText(row, kActivated, BooleanText(enabled));
    event->EventID = ListView1.Text(row, kEventID);
  }
  m_EventCollection.Update(event);
}

}  // namespace keplo
