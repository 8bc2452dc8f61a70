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

/// All events of the user's map, kept in step with the database, which is always written first. The objects
/// in it are the callers' own. Operations that return a boolean throw nothing: a failure is told to the host
/// through TriggerInputErrorCondition and gives false.
class colclsKeploEvents {
 public:
  colclsKeploEvents(Data& data, const ui::Clock& clock) : data_(data), clock_(clock) {}
  colclsKeploEvents(const colclsKeploEvents&) = delete;
  colclsKeploEvents& operator=(const colclsKeploEvents&) = delete;

  std::function<void(HostErrorRecord& objErr, bool& blnStopping)> TriggerInputErrorCondition;
  std::function<void(HostInputEvent& objInputEvent)> TriggerInputEvent;

  /// Save for an event that exists. It moves to the end of the collection.
  bool Update(const std::shared_ptr<clsKeploEvent>& objNewMember) {
    return Save(kStoreExisting, objNewMember);
  }
  /// Save for a new event. The table refuses an EventID that it already holds. A table of an earlier release,
  /// which has no key on EventID, takes the row; the collection refuses it and keeps the first event.
  bool Add(const std::shared_ptr<clsKeploEvent>& objNewMember) { return Save(kStoreNew, objNewMember); }

  /// @param key as EventKey makes it
  /// @return none if there is no such event
  std::shared_ptr<clsKeploEvent> Item(std::string_view key) const { return events_.Find(key); }
  /// @param index from 1
  std::shared_ptr<clsKeploEvent> Item(std::int32_t index) const;
  std::int32_t count() const { return static_cast<std::int32_t>(events_.All().size()); }
  /// For walking all events in their order.
  const EventSet::Members& NewEnum() const { return events_.All(); }
  auto begin() const { return NewEnum().begin(); }
  auto end() const { return NewEnum().end(); }

  /// Raises TriggerInputEvent once for each event, with the current time and nothing else filled in.
  /// @return false for an empty collection
  bool TriggerEvent();

  /// Adds the row of an event at the end of the list that Initialise was given.
  /// @param mode 0; any other adds nothing and gives false
  bool AddEventMapToListView(std::int32_t mode, const clsKeploEvent& event);

  /// Loads the event table into the collection and the list. A row that repeats an EventID is reported and
  /// left out. Once events are loaded, it takes in what has changed, as TakeInChanges does.
  /// @param list the event list, the same at every call; must outlive this object
  /// @return false if the table cannot be read, which Data tells, or if a row cannot be used, which is
  ///         reported; the rows before that one stay loaded
  bool Initialise(ui::ListView& list);

  /// Takes in what other programs have done to the event table: rows that changed, came or went, in the
  /// collection and in the list, where a row keeps its place; and of this program what it has shown, but
  /// could not store. The first read that fails leaves all as it is.
  /// @return false if the table cannot be read; Data::ChangedElsewhere says yes again then
  bool TakeInChanges();

  /// Writes an event to the database and puts it at the end of the collection. Of an event that exists only
  /// what is new about it is written, and only over the row that was read last: where another program has
  /// changed or deleted that row meanwhile, the failure is reported and the event taken in as it is now.
  /// A change of which only the last flush failed is reported and counts as made. After any other failure
  /// Data::ChangedElsewhere says yes, so that what was shown of the change is taken back with the next look.
  /// @param mode 1 for an event that exists, any other for a new one
  /// @return false without a report if the database cannot be opened, which Data tells
  bool Save(std::int32_t mode, std::shared_ptr<clsKeploEvent> event);

  /// Deletes an event from the database and from the collection; its row in the list stays.
  bool Delete(std::string_view eventID);

  /// Takes an event out of the collection alone.
  /// @return false if there is no such key
  bool Remove(std::string_view key);

  /// The last failure since Initialise was called; none before the first.
  std::shared_ptr<const HostErrorRecord> ErrorRecord() const { return errorRecord_; }

 private:
  template <typename Body>
  bool Reporting(const char* operation, Body body);
  void Report(const char* operation, const std::exception& failure);
  bool ReadAgain();
  void Load(const std::shared_ptr<clsKeploEvent>& event);
  void Write(std::int32_t mode, const clsKeploEvent& event);
  void WriteChanges(Recordset& rows, const clsKeploEvent& event);
  void TakeIn(const clsKeploEvent& event);
  void Forget(const std::string& key);

  Data& data_;
  const ui::Clock& clock_;
  EventSet events_;
  std::unordered_map<std::string, clsKeploEvent> stored_;  // by key, each as the table had it last
  std::shared_ptr<HostErrorRecord> errorRecord_;
  ui::ListView* list_ = nullptr;
  bool cutShort_ = false;  // whether a load ended at a row that cannot be used
  std::optional<HostInputEvent> inputEvent_;
};

}  // namespace keplo
