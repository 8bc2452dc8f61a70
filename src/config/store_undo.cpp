#include "config/store_undo.h"

#include <utility>

#include "config/merge_changes.h"
#include "failure.h"

namespace keplo {

void StoreUndo::Remember(std::string before) {
  if (before != store_.CfgText) change_ = Change{std::move(before), store_.CfgText};
}

std::string StoreUndo::Undo() {
  if (!change_) return "There is no change to take back.";
  ReloadConfig(store_);
  const std::optional<std::string> text = MergeChanges(change_->After, change_->Before, store_.CfgText);
  if (!text) {
    return "The change cannot be taken back, since the same lines of " + store_.Path.string() +
           " were changed again after it. Nothing was changed.";
  }
  const std::string current = store_.CfgText;
  try {
    ReplaceAndSave(store_, *text);
  } catch (const Failure&) {
    if (store_.CfgText != current) change_.reset();
    throw;
  }
  change_.reset();
  return {};
}

}  // namespace keplo
