#include "events/col_cls_keplo_events.h"

#include <utility>

#include "events/error_record.h"
#include "events/event_text.h"
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

}  // namespace

std::string EventKey(std::string_view eventID) { return "EM-" + std::string(eventID); }

template <typename Body>
bool colclsKeploEvents::Reporting(const char* operation, Body body) {
  try {
    return body();
  } catch (...) {
    TellPresentFailure([&](const std::exception& failure) { Report(operation, failure); });
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
  return Reporting(".TriggerEvent", [&] {
    if (!inputEvent_) inputEvent_.emplace();
    const std::int32_t events = count();  // a handler may add some
    for (std::int32_t i = 0; i < events; ++i) {
      inputEvent_->EventDate = ui::RecordDate(clock_.Now());
      if (TriggerInputEvent) TriggerInputEvent(*inputEvent_);
    }
    return events > 0;
  });
}

bool colclsKeploEvents::AddEventMapToListView(std::int32_t mode, const clsKeploEvent& event) {
  return Reporting(".AddEventMapToListView", [&] {
    if (mode != kStoreNew) return false;
    if (list_ == nullptr) throw Failure(kObjectNotSet, "The event map has no list yet. Initialise it first.");
    WriteEventRow(*list_, list_->Add(EventKey(event.EventID)), event);
    return true;
  });
}

bool colclsKeploEvents::Initialise(ui::ListView& list) {
  return Reporting(".Initialise", [&] {
    list_ = &list;
    Recordset rows;
    if (data_.ExecuteSQL(kSelectAllEvents, rows) != 1) return false;
    for (; !rows.Eof(); rows.MoveNext()) Load(EventOfRow(rows));
    return true;
  });
}

void colclsKeploEvents::Load(const std::shared_ptr<clsKeploEvent>& event) {
  try {
    events_.Add(EventKey(event->EventID), event);
  } catch (const Failure&) {
    // Tables of earlier releases have no key on EventID. One repeated row must not keep the others from the
    // user.
    TellPresentFailure([&](const std::exception& failure) { Report(".Initialise", failure); });
    return;
  }
  AddEventMapToListView(kStoreNew, *event);
}

bool colclsKeploEvents::Save(std::int32_t mode, std::shared_ptr<clsKeploEvent> event) {
  return Reporting(".Save", [&] {
    if (event == nullptr) throw Failure(kObjectNotSet, "Expected an event to save, but there is none.");
    if (data_.CheckConnection() != 1) return false;
    Write(mode, *event);
    const std::string key = EventKey(event->EventID);
    if (mode == kStoreExisting) events_.Remove(key);
    events_.Add(key, std::move(event));
    return true;
  });
}

void colclsKeploEvents::Write(std::int32_t mode, const clsKeploEvent& event) {
  Recordset rows;
  if (mode == kStoreExisting) {
    rows.Open(EventWithID(event.EventID), data_.Connection());
  } else {
    rows.Open(AllEvents(), data_.Connection());
    rows.AddNew();
  }
  FillRow(rows, event);
  rows.Update();
}

bool colclsKeploEvents::Delete(std::string_view eventID) {
  return Reporting(".Delete", [&] {
    if (data_.CheckConnection() != 1) return false;
    Recordset rows;
    rows.Open(EventWithID(eventID), data_.Connection());
    do rows.Delete();
    while (!rows.Eof());
    events_.Remove(EventKey(eventID));
    return true;
  });
}

}  // namespace keplo
