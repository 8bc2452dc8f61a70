#pragma once

#include <string>
#include <vector>

#include "config/cfg_store.h"

namespace keplo {

/// Undoes changes of a store, the latest first: a saved or deleted command, a protocol, an import.
///
/// Settings changed since then are kept, as are changes by other programs unless they touch the same lines.
///
///     undo.Begin();
///     ... the change, its save and whatever stays in memory ...
///     undo.End();
class StoreUndo {
 public:
  /// @param store that outlives this object
  explicit StoreUndo(CfgStore& store) : store_(store) {}

  /// Call this before a change.
  void Begin();
  /// Call this once the change is complete. If the text is unchanged, there is nothing to undo.
  void End();

  bool CanUndo() const { return !changes_.empty(); }

  /// Undoes the last change and saves; the next call undoes the one before it. If the change selected another
  /// protocol in PROTOCOL=, the earlier one is selected again. The caller refreshes its lists. A change whose
  /// lines another program has changed again is reported once and skipped from then on, as long as they
  /// conflict.
  /// @return why nothing was undone, for the user; empty on success
  /// @throws Failure if the save fails; if the text is unchanged, the change can still be undone
  std::string Undo();

 private:
  struct Change {
    std::string Before, After;
    bool IsReported = false;  // that it cannot be undone
  };

  std::string ConflictText(bool hasEarlier) const;
  void SaveUndone(std::vector<Change>::iterator change, const std::string& text);

  CfgStore& store_;
  std::vector<Change> changes_;  // oldest first
};

}  // namespace keplo
