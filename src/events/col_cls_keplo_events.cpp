#include "events/col_cls_keplo_events.h"

#include <unordered_set>
#include <utility>
#include <vector>

#include "events/error_record.h"
#include "events/event_row.h"
#include "events/failure_numbers.h"

namespace keplo {

namespace {

std::shared_ptr<clsKeploEvent> EventOfRow(const Recordset& rows) {
  auto event = std::make_shared<clsKeploEvent>();
  event->EventID = rows.FieldText("EventID");
  event->EventName = rows.FieldText("EventName");
  event->EventDescription = rows.FieldText("EventDescription");
  event->IRCommand = rows.FieldText("IRCommand");
  event->Enabled = rows.FieldBoolean("Enabled");
  event->Zone = rows.FieldInteger("Zone");
  return event;
}

void FillRow(Recordset& rows, const clsKeploEvent& event) {
  rows.SetFieldValue("EventID", event.EventID);
  rows.SetFieldValue("EventName", event.EventName);
  rows.SetFieldValue("EventDescription", event.EventDescription);
  rows.SetFieldValue("IRCommand", event.IRCommand);
  rows.SetFieldValue("Enabled", std::int64_t{event.Enabled ? 1 : 0});
  rows.SetFieldValue("Zone", std::int64_t{event.Zone});
}

/// A change of an event that another program has changed or deleted since it was read.
class Conflict : public Failure {
 public:
  Conflict(int number, const std::string& eventID, const char* what, const char* advice)
      : Failure(number, "Another program " + std::string(what) + " the event with the EventID " + eventID +
                            " meanwhile. " + advice) {}
};

Conflict Changed(const std::string& eventID) {
  return {kRowGone, eventID, "changed", "The list shows it as it is now; make your change again."};
}

Conflict Deleted(const std::string& eventID) {
  return {kNoCurrentRow, eventID, "deleted", "It has left the list too; add it again if you need it."};
}

Failure NotThere(const std::string& eventID) {
  return Failure(kNoCurrentRow, "The event map has no event with the EventID '" + eventID +
                                    "'. Select an event of the list first.");
}

}  // namespace

std::string EventKey(std::string_view eventID) { return "EM-" + std::string(eventID); }

template <typename Body>
bool colclsKeploEvents::RunAndReport(const char* operation, Body body) {
  try {
    return body();
  } catch (...) {
    ReportCurrentFailure([&](const std::exception& failure) { Report(operation, failure); });
    return false;
  }
}

void colclsKeploEvents::Report(const char* operation, const std::exception& failure) {
  const auto record = std::make_shared<HostErrorRecord>(
      ErrorRecordOf(failure, "colclsKeploEvents", std::string("colclsKeploEvents") + operation,
                    ui::RecordDate(clock_.Now())));
  errorRecord_ = record;
  bool stopping = false;
  if (TriggerInputErrorCondition) TriggerInputErrorCondition(*record, stopping);
}

std::shared_ptr<clsKeploEvent> colclsKeploEvents::Item(std::int32_t index) const {
  if (index < 1 || index > count()) return nullptr;
  return events_.All()[static_cast<std::size_t>(index - 1)];
}

bool colclsKeploEvents::TriggerEvent() {
  return RunAndReport(".TriggerEvent", [&] {
    if (!inputEvent_) inputEvent_.emplace();
    const std::int32_t events = count();  // handlers may add more
    for (std::int32_t i = 0; i < events; ++i) {
      inputEvent_->EventDate = ui::RecordDate(clock_.Now());
      if (TriggerInputEvent) TriggerInputEvent(*inputEvent_);
    }
    return events > 0;
  });
}

bool colclsKeploEvents::AddEventMapToListView(std::int32_t mode, const clsKeploEvent& event) {
  return RunAndReport(".AddEventMapToListView", [&] {
    if (mode != kStoreNew) return false;
    if (list_ == nullptr) throw Failure(kObjectNotSet, "The event map has no list yet. Initialise it first.");
    WriteEventRow(*list_, list_->Add(EventKey(event.EventID)), event);
    return true;
  });
}

bool colclsKeploEvents::Initialise(ui::ListView& list) {
  return RunAndReport(".Initialise", [&] {
    list_ = &list;
    errorRecord_.reset();
    if (count() > 0 && !cutShort_) return Reload();
    while (!stored_.empty()) Forget(std::string(stored_.begin()->first));  // what an earlier load left
    Recordset rows;
    if (data_.ExecuteSQL(kSelectAllEvents, rows) != 1) return false;
    cutShort_ = true;
    for (; !rows.Eof(); rows.MoveNext()) Load(EventOfRow(rows));
    cutShort_ = false;
    return true;
  });
}

void colclsKeploEvents::Load(const std::shared_ptr<clsKeploEvent>& event) {
  events_.Add(EventKey(event->EventID), event);
  stored_[EventKey(event->EventID)] = *event;
  AddEventMapToListView(kStoreNew, *event);
}

bool colclsKeploEvents::ApplyExternalChanges() {
  return RunAndReport(".ApplyExternalChanges", [&] { return list_ != nullptr && Reload(); });
}

bool colclsKeploEvents::Reload() {
  Recordset rows;
  if (data_.ExecuteSQL(kSelectAllEvents, rows) != 1) {
    data_.MarkStale();
    return false;
  }
  std::vector<std::shared_ptr<clsKeploEvent>> current;
  for (; !rows.Eof(); rows.MoveNext()) current.push_back(EventOfRow(rows));
  std::unordered_set<std::string> keys;
  for (const auto& event : current) keys.insert(EventKey(event->EventID));
  std::vector<std::string> gone;
  for (const auto& [key, event] : stored_) {
    if (!keys.contains(key)) gone.push_back(key);
  }
  for (const std::string& key : gone) Forget(key);
  for (const auto& event : current) {
    // An older table may have an EventID twice; the first row counts.
    if (keys.erase(EventKey(event->EventID)) > 0) Refresh(*event);
  }
  return true;
}

void colclsKeploEvents::Refresh(const clsKeploEvent& event) {
  const std::string key = EventKey(event.EventID);
  const auto stored = stored_.find(key);
  if (stored == stored_.end()) return Load(std::make_shared<clsKeploEvent>(event));
  stored->second = event;
  UpdateEventRow(*list_, event);
  if (const auto member = events_.Find(key); member != nullptr && *member == event) return;
  events_.Remove(key);
  events_.Add(key, std::make_shared<clsKeploEvent>(event));
}

void colclsKeploEvents::Forget(const std::string& key) {
  const auto stored = stored_.find(key);
  if (stored == stored_.end()) return;
  const int row = list_ == nullptr ? 0 : list_->FindRow(kEventID, stored->second.EventID);
  if (row != 0) list_->Remove(row);
  events_.Remove(key);
  stored_.erase(stored);
}

bool colclsKeploEvents::Save(std::int32_t mode, std::shared_ptr<clsKeploEvent> event) {
  bool conflict = false;
  const bool saved = RunAndReport(".Save", [&] {
    if (event == nullptr) throw Failure(kObjectNotSet, "Expected an event to save, but there is none.");
    if (data_.CheckConnection() != 1) return false;
    try {
      Write(mode, *event);
    } catch (const NotConfirmed& doubt) {
      Report(".Save", doubt);
    } catch (const Conflict&) {
      conflict = true;
      throw;
    }
    const std::string key = EventKey(event->EventID);
    const clsKeploEvent written = *event;
    if (mode == kStoreExisting) events_.Remove(key);
    events_.Add(key, std::move(event));
    stored_[key] = written;
    return true;
  });
  if (conflict) {
    ApplyExternalChanges();
  } else if (!saved) {
    data_.MarkStale();  // the caller may already show what was not stored
  }
  return saved;
}

void colclsKeploEvents::Write(std::int32_t mode, const clsKeploEvent& event) {
  Recordset rows;
  if (mode == kStoreExisting) {
    rows.Open(EventWithID(event.EventID), data_.Connection());
    WriteChanges(rows, event);
  } else {
    rows.Open(AllEvents(), data_.Connection());
    rows.AddNew();
    FillRow(rows, event);
    rows.Update();
  }
}

void colclsKeploEvents::WriteChanges(Recordset& rows, const clsKeploEvent& event) {
  const auto stored = stored_.find(EventKey(event.EventID));
  const bool known = stored != stored_.end();
  if (rows.Eof()) {
    if (known) throw Deleted(event.EventID);
    throw NotThere(event.EventID);
  }
  if (known && *EventOfRow(rows) != stored->second) throw Changed(event.EventID);
  FillRow(rows, event);
  try {
    rows.Update();
  } catch (const Failure& failure) {
    // The row was removed between reading and writing it.
    if (failure.Number() == kRowGone) throw Changed(event.EventID);
    throw;
  }
}

bool colclsKeploEvents::Delete(std::string_view eventID) {
  return RunAndReport(".Delete", [&] {
    if (data_.CheckConnection() != 1) return false;
    Recordset rows;
    rows.Open(EventWithID(eventID), data_.Connection());
    try {
      rows.Delete();
    } catch (const NotConfirmed& doubt) {
      Report(".Delete", doubt);
    }
    Remove(EventKey(eventID));
    return true;
  });
}

bool colclsKeploEvents::Remove(std::string_view key) {
  stored_.erase(std::string(key));
  return events_.Remove(key);
}

}  // namespace keplo
