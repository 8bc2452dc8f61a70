#pragma once

#include <functional>
#include <string>

#include "disk/posix_file_system.h"
#include "events/col_cls_keplo_events.h"
#include "keplo_mod.h"
#include "ui/clock.h"
#include "ui/list_view.h"

namespace keplo::cli {

/// keplo.cfg of an application path, loaded.
struct OpenConfig {
  /// Tells on standard error what is wrong with a damaged file.
  explicit OpenConfig(const std::string& appPathOption);

  /// For commands that write the file back: a save cuts what stands behind the last section header.
  /// @throws Failure if the file is damaged
  void RequireWhole() const;

  PosixFileSystem Files;
  KeploMod Mod;
};

/// Runs a command that reads and changes keplo.cfg again as long as other programs change it in between.
int AmongOthers(const std::function<int()>& command);

/// The same for a change of a store that is loaded already; the store is read again ahead of each further
/// try.
void ChangeAmongOthers(CfgStore& store, const std::function<void()>& change);

/// The event map of an application path, loaded, for commands that read or change it.
struct OpenMap {
  explicit OpenMap(const std::string& appPathOption);

  /// Why the last change failed.
  const std::string& FailureText() const { return failure_; }

  ui::SystemClock Clock;
  Data Database;
  ui::ListView List;
  colclsKeploEvents Events;

 private:
  std::string failure_;
};

}  // namespace keplo::cli
