#include "config/store_undo.h"

#include <iterator>
#include <optional>
#include <utility>

#include "config/merge_changes.h"
#include "failure.h"

namespace keplo {

void StoreUndo::Begin() { store_.WithoutChange = store_.CfgText; }

void StoreUndo::End() {
  std::optional<std::string> before = std::exchange(store_.WithoutChange, std::nullopt);
  if (before && *before != store_.CfgText) changes_.push_back({*std::move(before), store_.CfgText});
}

std::string StoreUndo::Undo() {
  if (changes_.empty()) return "There is no change to take back.";
  ReloadConfig(store_);
  for (auto change = changes_.rbegin(); change != changes_.rend(); ++change) {
    if (const auto text = MergeChanges(change->After, change->Before, store_.CfgText)) {
      SaveUndone(std::prev(change.base()), *text);
      return {};
    }
    if (!std::exchange(change->IsReported, true)) return ConflictText(std::next(change) != changes_.rend());
  }
  return ConflictText(false);
}

std::string StoreUndo::ConflictText(bool hasEarlier) const {
  return "The change cannot be taken back, since the same lines of " + store_.Path.string() +
         " were changed again after it. Nothing was changed." +
         (hasEarlier ? " Undo once more takes back the change before it." : "");
}

void StoreUndo::SaveUndone(std::vector<Change>::iterator change, const std::string& text) {
  const std::string current = store_.CfgText;
  try {
    ReplaceAndSave(store_, text);
  } catch (const Failure&) {
    if (store_.CfgText != current) changes_.erase(change);
    throw;
  }
  changes_.erase(change);
}

}  // namespace keplo
