#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/control.h"

namespace keplo::ui {

/// A drop-down list of fixed entries. OnClick runs, after OnChanged, whenever another entry is selected,
/// whether by the user or by code.
class DropDownList : public Control {
 public:
  static constexpr int kNoSelection = -1;

  const std::vector<std::string>& Entries() const { return entries_; }
  int Count() const { return static_cast<int>(entries_.size()); }

  /// Removes all entries and the selection.
  void Clear();
  void Add(std::string_view entry);
  /// Replaces all entries and removes the selection.
  void SetEntries(std::vector<std::string> entries);
  /// Replaces all entries, but keeps the selected text selected if it is still there. Does not run OnClick.
  /// @return whether an entry is selected
  bool Refill(std::vector<std::string> entries);

  /// Index of the selected entry, from 0; kNoSelection if there is none.
  int ListIndex() const { return listIndex_; }
  /// Text of the selected entry; empty if there is none.
  std::string Text() const;
  /// Selects an entry; ignores an index out of range.
  void Select(int index);
  /// Selects an entry for the user. If it was already selected, this does nothing unless PicksAgain is set.
  void Pick(int index);
  /// Selects the first entry with exactly this text.
  /// @return false, without a change, if there is none
  bool SelectText(std::string_view text);

  std::function<void()> OnClick;
  bool PicksAgain = false;  // picking the selected entry runs OnClick, too

 private:
  std::vector<std::string> entries_;
  int listIndex_ = kNoSelection;
};

}  // namespace keplo::ui
