#include "config/store_undo.h"

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
  const Change& change = changes_.back();
  ReloadConfig(store_);
  const std::optional<std::string> text = MergeChanges(change.After, change.Before, store_.CfgText);
  if (!text) {
    return "The change cannot be taken back, since the same lines of " + store_.Path.string() +
           " were changed again after it. Nothing was changed.";
  }
  const std::string current = store_.CfgText;
  try {
    ReplaceAndSave(store_, *text);
  } catch (const Failure&) {
    if (store_.CfgText != current) changes_.pop_back();
    throw;
  }
  changes_.pop_back();
  return {};
}

}  // namespace keplo
