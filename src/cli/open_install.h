#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "cli/outcome.h"
#include "events/events_on_disk.h"
#include "keplo_mod.h"

namespace keplo::cli {

/// The loaded keplo.cfg of an application path.
struct OpenedConfig {
  /// Reports damage of the file on standard error.
  explicit OpenedConfig(const std::string& appPathOption);

  const std::string& Text() const { return Mod.Store.CfgText; }

  /// For commands that save the file: a save cuts it after the last section header.
  /// @throws Failure if the file is damaged
  void RequireWhole() const;

  /// Changes the file. If another program has changed it meanwhile, reads it again and repeats the change.
  /// @throws NotWritten if it cannot be saved; otherwise whatever the change throws
  void Change(const std::function<void(CfgStore& store)>& change);

  KeploMod Mod;
};

/// Whether there is an install in the default application path.
bool HasInstall();

/// The configuration with the learned commands; null, which is not an error, if there is no install.
/// @throws Failure if the option specifies an application path without one
std::unique_ptr<OpenedConfig> LearnedCommands(const std::string& appPathOption);

/// Thrown if a change was made, but may not survive a power cut. It must not be repeated.
class NotConfirmedWritten : public NotWritten {
 public:
  using NotWritten::NotWritten;
};

/// The loaded event map of an application path.
struct OpenedMap : EventsOnDisk {
  explicit OpenedMap(const std::string& appPathOption);

  std::shared_ptr<clsKeploEvent> Find(const std::string& eventID) const;
  /// The first number that no event has or had, and under which the host of the application path has stored
  /// nothing.
  /// @throws Failure
  std::int64_t FreeNumber();
  /// Changes the map.
  /// @param change returns false if it failed
  /// @throws NotWritten if the map was not changed
  /// @throws NotConfirmedWritten if it was changed, but only the final flush failed
  void Change(const std::function<bool(colclsKeploEvents& events)>& change);

 private:
  std::string failure_;  // of the last operation
};

}  // namespace keplo::cli
