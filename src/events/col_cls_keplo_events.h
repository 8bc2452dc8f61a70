#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "events/cls_keplo_event.h"
#include "events/data.h"
#include "events/event_set.h"
#include "host/host_records.h"
#include "ui/clock.h"
#include "ui/list_view.h"

namespace keplo {

/// The key of an event in the collection and of its row in the event list: "EM-" + eventID.
std::string EventKey(std::string_view eventID);

/// Modes of Save.
enum SaveModes : std::int32_t { kStoreNew = 0, kStoreExisting = 1 };

/// All events of the user's event map, kept in step with the database, which is always written first. Members
/// are shared with callers, not copied. Operations that return a boolean do not throw: they report a failure
/// to the host through TriggerInputErrorCondition and return false.
class colclsKeploEvents {
 public:
  colclsKeploEvents(Data& data, const ui::Clock& clock) : data_(data), clock_(clock) {}
  colclsKeploEvents(const colclsKeploEvents&) = delete;
  colclsKeploEvents& operator=(const colclsKeploEvents&) = delete;

  std::function<void(HostErrorRecord& objErr, bool& blnStopping)> TriggerInputErrorCondition;
  std::function<void(HostInputEvent& objInputEvent)> TriggerInputEvent;

  /// Saves an existing event, which moves to the end of the collection.
  bool Update(const std::shared_ptr<clsKeploEvent>& objNewMember) {
    return Save(kStoreExisting, objNewMember);
  }
  /// Saves a new event. The table refuses an EventID that it already has. The table of an older release,
  /// which has no key on EventID, accepts the row; the collection then refuses it and keeps the first event.
  bool Add(const std::shared_ptr<clsKeploEvent>& objNewMember) { return Save(kStoreNew, objNewMember); }

  /// @param key as returned by EventKey
  /// @return none if there is no such event
  std::shared_ptr<clsKeploEvent> Item(std::string_view key) const { return events_.Find(key); }
  /// @param index from 1
  std::shared_ptr<clsKeploEvent> Item(std::int32_t index) const;
  std::int32_t count() const { return static_cast<std::int32_t>(events_.All().size()); }
  /// All events in their order.
  const EventSet::Members& NewEnum() const { return events_.All(); }
  auto begin() const { return NewEnum().begin(); }
  auto end() const { return NewEnum().end(); }

  /// Raises TriggerInputEvent once per event, with only the current time filled in.
  /// @return false for an empty collection
  bool TriggerEvent();

  /// Appends the row of an event to the list passed to Initialise.
  /// @param mode 0; any other value adds nothing and returns false
  bool AddEventMapToListView(std::int32_t mode, const clsKeploEvent& event);

  /// Loads the event table into the collection and the list. A row that repeats an EventID is reported and
  /// skipped. If events are already loaded, it behaves like ApplyExternalChanges.
  /// @param list the event list, the same for every call; must outlive this object
  /// @return false if the table cannot be read, for which Data has the reason, or if a row is unusable, which
  /// is
  ///         reported; earlier rows stay loaded
  bool Initialise(ui::ListView& list);

  /// Updates collection and list to the current event table. A row keeps its position in the list. Changes
  /// that this program has shown but could not store disappear. If reading fails, nothing changes.
  /// @return false if the table cannot be read; Data::ChangedElsewhere then returns true again
  bool ApplyExternalChanges();

  /// Writes an event to the database and moves it to the end of the collection. An existing row is only
  /// overwritten if it is as it was last read: if another program has changed or deleted it meanwhile, the
  /// conflict is reported and the event updated to its current state. If only the final flush fails, that is
  /// reported and the change counts as made. After any other failure Data::ChangedElsewhere returns true, so
  /// that the next check reverts whatever the list shows of the change.
  /// @param mode 1 for an existing event, any other value for a new one
  /// @return false, without a report, if the database cannot be opened; Data has the reason
  bool Save(std::int32_t mode, std::shared_ptr<clsKeploEvent> event);

  /// Deletes an event from the database and the collection; its row in the list stays.
  bool Delete(std::string_view eventID);

  /// Removes an event from the collection only.
  /// @return false if there is no such key
  bool Remove(std::string_view key);

  /// The last failure since Initialise was called; none before the first.
  std::shared_ptr<const HostErrorRecord> ErrorRecord() const { return errorRecord_; }

 private:
  template <typename Body>
  bool RunAndReport(const char* operation, Body body);
  void Report(const char* operation, const std::exception& failure);
  bool Reload();
  void Load(const std::shared_ptr<clsKeploEvent>& event);
  void Write(std::int32_t mode, const clsKeploEvent& event);
  void WriteChanges(Recordset& rows, const clsKeploEvent& event);
  void Refresh(const clsKeploEvent& event);
  void Forget(const std::string& key);

  Data& data_;
  const ui::Clock& clock_;
  EventSet events_;
  std::unordered_map<std::string, clsKeploEvent>
      stored_;  // by key, as last read from or written to the table
  std::shared_ptr<HostErrorRecord> errorRecord_;
  ui::ListView* list_ = nullptr;
  bool cutShort_ = false;  // whether the last load ended at an unusable row
  std::optional<HostInputEvent> inputEvent_;
};

}  // namespace keplo
