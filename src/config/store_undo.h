#pragma once

#include <optional>
#include <string>

#include "config/cfg_store.h"

namespace keplo {

/// Takes back the last change of a store: a command that was saved or deleted, a protocol, an import.
///
/// Settings that were changed since then stay as they are, and so does what other programs have written, as
/// long as it does not touch the same lines.
///
///     const std::string before = store.CfgText;
///     ... the whole change, its save and what stays in memory ...
///     undo.Remember(before);
class StoreUndo {
 public:
  /// @param store that outlives this object
  explicit StoreUndo(CfgStore& store) : store_(store) {}

  /// To be called once a change is complete. A change that has left the text as it was is none.
  /// @param before CfgText as it was before the change
  void Remember(std::string before);

  bool CanUndo() const { return change_.has_value(); }

  /// Takes the change back and saves; then there is nothing left to undo. Where the change has selected
  /// another protocol in PROTOCOL=, the one before it is selected again. Lists are to be filled anew.
  /// @return why nothing was taken back, for a person; empty if it was
  /// @throws Failure if the save fails; as long as the text is as it was, the change can be taken back again
  std::string Undo();

 private:
  struct Change {
    std::string Before, After;
  };

  CfgStore& store_;
  std::optional<Change> change_;
};

}  // namespace keplo
