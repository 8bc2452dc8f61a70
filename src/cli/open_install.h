#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "cli/outcome.h"
#include "events/events_on_disk.h"
#include "keplo_mod.h"

namespace keplo::cli {

/// keplo.cfg of an application path, loaded.
struct OpenedConfig {
  /// Tells on standard error what is wrong with a damaged file.
  explicit OpenedConfig(const std::string& appPathOption);

  const std::string& Text() const { return Mod.Store.CfgText; }

  /// For commands that write the file back: a save cuts what stands after the last section header.
  /// @throws Failure if the file is damaged
  void RequireWhole() const;

  /// Changes the file. If other programs have changed it meanwhile, it is read again and the change made
  /// again.
  /// @throws NotWritten if it cannot be saved; what else the change throws
  void Change(const std::function<void(CfgStore& store)>& change);

  KeploMod Mod;
};

/// Whether there is an install at the application path that holds without the option.
bool HasInstall();

/// The learned commands, if there are any: without an install nothing is known, but all else can be told.
/// @throws Failure if the option names an application path that has none
std::unique_ptr<OpenedConfig> LearnedCommands(const std::string& appPathOption);

/// A change that was made, but may not outlive a power cut. To make it again would make it twice.
class NotConfirmedWritten : public NotWritten {
 public:
  using NotWritten::NotWritten;
};

/// The event map of an application path, loaded.
struct OpenedMap : EventsOnDisk {
  explicit OpenedMap(const std::string& appPathOption);

  std::shared_ptr<clsKeploEvent> Find(const std::string& eventID) const;
  /// The first whole number that no event has, none that was deleted had, and under which the host in the
  /// application path has nothing kept.
  /// @throws Failure
  std::int64_t FreeNumber();
  /// Changes the map.
  /// @param change gives false if it failed
  /// @throws NotWritten; NotConfirmedWritten if it was changed
  void Change(const std::function<bool(colclsKeploEvents& events)>& change);

 private:
  std::string failure_;  // of the last operation
};

}  // namespace keplo::cli
