#pragma once

#include <string>
#include <vector>

#include "config/cfg_store.h"

namespace keplo {

/// Takes back the changes of a store, the last one first: a command that was saved or deleted, a protocol, an
/// import.
///
/// Settings that were changed since then stay as they are, and so does what other programs have written, as
/// long as it does not touch the same lines.
///
///     undo.Begin();
///     ... the whole change, its save and what stays in memory ...
///     undo.End();
class StoreUndo {
 public:
  /// @param store that outlives this object
  explicit StoreUndo(CfgStore& store) : store_(store) {}

  /// To be called before a change.
  void Begin();
  /// To be called once a change is complete. A change that has left the text as it was is none.
  void End();

  bool CanUndo() const { return !changes_.empty(); }

  /// Takes the last change back and saves; the next call takes back the one before it. Where the change has
  /// selected another protocol in PROTOCOL=, the one before it is selected again. Lists are to be filled
  /// again. A change whose lines were changed again by another program is told once and left out from then
  /// on, as long as they are so.
  /// @return why nothing was taken back, for a person; empty if it was
  /// @throws Failure if the save fails; as long as the text is as it was, the change can be taken back again
  std::string Undo();

 private:
  struct Change {
    std::string Before, After;
    bool IsTold = false;  // that it cannot be taken back
  };

  std::string WhyNot(bool hasEarlier) const;
  void TakeBack(std::vector<Change>::iterator change, const std::string& text);

  CfgStore& store_;
  std::vector<Change> changes_;  // the last one at the end
};

}  // namespace keplo
