#include <algorithm>
#include <cerrno>
#include <exception>
#include <utility>

#include "config/protocols.h"
#include "events/event_numbers.h"
#include "events/event_query.h"
#include "events/event_row.h"
#include "events/failure_numbers.h"
#include "events/recordset.h"
#include "host/ivelmora_input_plugin.h"
#include "keplo_mod.h"
#include "shell/about_text.h"
#include "shell/keplo.h"
#include "shell/plugin_page.h"

namespace keplo {

namespace {

constexpr std::int32_t kAddMode = 0;
constexpr std::int32_t kEditMode = 1;

void CopyToHost(HostInputEvent& objInputEvent, const clsKeploEvent& event) {
  objInputEvent.EventName = event.EventName;
  objInputEvent.EventDescription = event.EventDescription;
  objInputEvent.EventCommand = event.IRCommand;
}

/// Deletes the current row. That a power cut may restore it is not reported.
void DeleteRow(Recordset& rows) {
  try {
    rows.Delete();
  } catch (const NotConfirmed&) {
  }
}

}  // namespace

std::int32_t Keplo::InputAddEvent(HostInputEvent& objInputEvent) try {
  frmEvent dialog(mod_.Store, mod_.Settings);
  const auto event = std::make_shared<clsKeploEvent>();
  event->EventID = objInputEvent.EventID;
  if (!dialog.ShowMe(kAddMode, *event, windows_.EventDialog)) return kInputCancelled;
  if (!m_EventCollection.Save(kAddMode, event)) return kInputFailed;
  CopyToHost(objInputEvent, *event);
  AppendEventRow(ListView1, *event);
  return kInputDone;
} catch (const std::exception& failure) {
  return ReportFailure("InputAddEvent", failure);
}

std::int32_t Keplo::InputModifyEvent(HostInputEvent& objInputEvent) try {
  frmEvent dialog(mod_.Store, mod_.Settings);
  const std::string key = EventKey(objInputEvent.EventID);
  const auto event = m_EventCollection.Item(key);
  if (event == nullptr) {
    throw Failure(kObjectNotSet, "The event map has no event with the EventID " + objInputEvent.EventID);
  }
  std::int32_t result = kInputCancelled;
  if (dialog.ShowMe(kEditMode, *event, windows_.EventDialog)) {
    result = m_EventCollection.Save(kEditMode, event) ? kInputDone : kInputFailed;
    if (result == kInputDone) CopyToHost(objInputEvent, *event);
  }
  // Shows what the collection has: even a change that could not be stored, until ApplyExternalChanges reverts
  // it. After a conflict with another program, that is the event as that program left it.
  const auto current = m_EventCollection.Item(key);
  UpdateEventRow(ListView1, current != nullptr ? *current : *event);
  return result;
} catch (const std::exception& failure) {
  return ReportFailure("InputModifyEvent", failure);
}

std::int32_t Keplo::InputDeleteEvent(const HostInputEvent& objInputEvent) {
  const int row = ListView1.FindRow(kEventID, objInputEvent.EventID);
  if (row == 0) return kInputFailed;
  ListView1.Remove(row);
  m_EventCollection.Remove(EventKey(objInputEvent.EventID));
  listDiffersFromMap_ = true;
  mod_.modData->MarkStale();  // if the row stays in the table, it will return to the list
  if (mod_.modData->CheckConnection() != 1) return kInputFailed;
  try {
    Recordset rows;
    rows.Open(EventWithID(objInputEvent.EventID), mod_.modData->Connection());
    listDiffersFromMap_ = !rows.Eof();
    DeleteRow(rows);
    listDiffersFromMap_ = !rows.Eof();  // the table of an older release may have an EventID twice
  } catch (const std::exception&) {
    // Failures of these steps are not reported.
  }
  return kInputDone;
}

std::int64_t Keplo::HighestUsedUpEventID() {
  mod_.modData->CheckConnection();
  return HighestUsedUp(mod_.modData->Connection().Database());
}

std::int32_t Keplo::InputHouseKeepingGetEventIDs(std::vector<std::string>& eventIDs) const {
  eventIDs.assign(static_cast<std::size_t>(std::max(1, ListView1.Count())), "");
  for (int row = 1; row <= ListView1.Count(); ++row) {
    eventIDs[static_cast<std::size_t>(row - 1)] = ListView1.Text(row, kEventID);
  }
  return kInputDone;
}

std::string Keplo::InputIconFileName() const { return (mod_.AppPath / "inkeplo.ico").string(); }

void Keplo::InputDisplayAboutBox() { windows_.Boxes.Message(AboutText(), "InputKeplo"); }

std::int32_t Keplo::InputGetPluginMenuItems(std::vector<std::string>& mnuItems) const {
  mnuItems = {"Configure Infrared Interface"};
  return kInputDone;
}

std::int32_t Keplo::InputGetPluginVersion(std::string& szVersion) const {
  szVersion = VersionText;
  return kInputDone;
}

std::int32_t Keplo::InputGetHTMLPage(std::string& szHTML) const {
  szHTML = EventPage(ListView1, PageRequest::Get);
  return kInputDone;
}

std::int32_t Keplo::InputPostHTMLPage(std::string& szHTML) const {
  szHTML = EventPage(ListView1, PageRequest::Post);
  return kInputDone;
}

void Keplo::OpenMainWindow() {
  if (windowOpen_) return;
  ReportReleased(keys_.ReleaseAll());
  Timer1.SetEnabled(false);  // only the window uses line and text while it is open
  mod_.Settings.PluginMode = 1;
  windowOpen_ = true;
  try {
    if (windows_.OpenMainWindow) windows_.OpenMainWindow();
  } catch (const std::exception& failure) {
    ReportFailure("OpenMainWindow", failure);  // monitoring continues as if the window had been closed
  }
  windowOpen_ = false;
}

void Keplo::SetTimer() { Timer1.SetEnabled(Monitoring && !terminated_ && !windowOpen_); }

void Keplo::SaveConfiguration() try {
  if (IsWhole(mod_.Store.CfgText)) SaveConfig(mod_.Store);
  if (const auto aside = std::exchange(mod_.Store.ConflictCopy, {}); !aside.empty()) {
    throw Failure(ESTALE, mod_.Store.Path.string() +
                              " had been changed by another program. What it wrote is kept in " +
                              aside.string() + "; take its new commands and settings over from there.");
  }
} catch (const std::exception& failure) {
  ReportFailure("InputConfigurePlugin", failure);
}

bool Keplo::InputCallMenuItem(std::int16_t index) {
  if (index == 0) OpenMainWindow();
  if (Monitoring) SetRestingLines();
  SetTimer();
  RefreshStatusPanel();
  return true;
}

std::int32_t Keplo::InputConfigurePlugin() {
  OpenMainWindow();
  RefreshStatusPanel();
  if (Monitoring) {
    line_.RTS(-1);
    if (mod_.Settings.ReceiverKind == 1) {
      line_.TXD(0);
      line_.DTR(-1);
    }
  }
  if (windows_.HasDisplay) SaveConfiguration();
  SetTimer();
  return kInputDone;
}

}  // namespace keplo
