#include "cli/open_install.h"

#include <algorithm>
#include <utility>

#include "config/check_config.h"
#include "events/event_numbers.h"
#include "program/app_path.h"
#include "program/book_numbers.h"

namespace keplo::cli {

bool HasInstall() try {
  RequireInstall({});
  return true;
} catch (const Failure&) {
  return false;
}

OpenedConfig::OpenedConfig(const std::string& appPathOption) : Mod(RequireInstall(appPathOption)) {
  Mod.Store.RefusesOtherText = true;
  LoadConfig(Mod.Store);
  if (const std::string damage = CheckConfig(Mod.Store); !damage.empty()) Tell(damage);
  for (const std::string& damage : Mod.Store.Raw.Damage) Tell(damage);
}

void OpenedConfig::RequireWhole() const {
  if (!DamageOf(Mod.Store).empty()) throw Failure(1, "Nothing was changed, since the file is damaged.");
}

void OpenedConfig::Change(const std::function<void(CfgStore& store)>& change) {
  constexpr int kTries = 50;  // each interrupted by a save of another program
  RequireWhole();
  for (int tries = 1;; ++tries) {
    try {
      return change(Mod.Store);
    } catch (const ChangedElsewhere& conflict) {
      if (tries == kTries) throw NotWritten(1, conflict.what());
      LoadConfig(Mod.Store);
      RequireWhole();
    } catch (const Refused&) {
      throw;
    } catch (const Failure& failure) {
      throw NotWritten(failure.Number(), failure.what());
    }
  }
}

std::unique_ptr<OpenedConfig> LearnedCommands(const std::string& appPathOption) {
  if (!IsAppPathNamed(appPathOption) && !HasInstall()) return nullptr;
  try {
    return std::make_unique<OpenedConfig>(appPathOption);
  } catch (const Failure& failure) {
    if (!appPathOption.empty()) throw;
    Tell(failure.what());
    return nullptr;
  }
}

OpenedMap::OpenedMap(const std::string& appPathOption) : EventsOnDisk(ResolveAppPath(appPathOption)) {
  Events.TriggerInputErrorCondition = [this](HostErrorRecord& record, bool&) {
    failure_ = record.ErrorDescription;
  };
  if (!Events.Initialise(List)) {
    if (failure_.empty()) failure_ = Database.ErrorDetails().ErrorDescription;
    throw Failure(1, "The event map cannot be loaded: " + failure_);
  }
  if (!failure_.empty()) Tell(std::exchange(failure_, ""));
}

std::shared_ptr<clsKeploEvent> OpenedMap::Find(const std::string& eventID) const {
  return Events.Item(EventKey(eventID));
}

std::int64_t OpenedMap::FreeNumber() {
  const std::filesystem::path appPath =
      std::filesystem::path(Database.Connection().ConnectionString()).parent_path();
  std::int64_t number = HighestUsedUp(Database.Connection().Database()) + 1;
  try {
    number = std::max(number, FirstFreeNumberOfBook(appPath));
  } catch (const Failure& failure) {
    throw Failure(failure.Number(), std::string(failure.what()) +
                                        ". It tells which numbers the events of the host have had: mend it, "
                                        "or choose one by --id.");
  }
  while (Find(std::to_string(number)) != nullptr) ++number;
  return number;
}

void OpenedMap::Change(const std::function<bool(colclsKeploEvents& events)>& change) {
  failure_.clear();
  const bool changed = change(Events);
  if (changed && failure_.empty()) return;
  if (changed) throw NotConfirmedWritten(1, failure_);
  const std::string& reason = failure_.empty() ? Database.ErrorDetails().ErrorDescription : failure_;
  throw NotWritten(1, "The event map was not changed: " + reason);
}

}  // namespace keplo::cli
