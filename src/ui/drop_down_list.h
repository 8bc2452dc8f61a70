#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ui/control.h"

namespace keplo::ui {

/// A drop-down list that offers fixed entries. The click handler runs at once whenever the selection really
/// changes to an entry, from the user or from code, after OnChanged.
class DropDownList : public Control {
 public:
  static constexpr int kNoSelection = -1;

  const std::vector<std::string>& Entries() const { return entries_; }
  int Count() const { return static_cast<int>(entries_.size()); }

  /// Removes all entries; nothing is selected then.
  void Clear();
  void Add(std::string_view entry);
  /// Puts other entries in the place of all; nothing is selected then.
  void SetEntries(std::vector<std::string> entries);
  /// The same, but the selected text stays selected where it is one of the other entries too; no click.
  /// @return whether an entry is selected
  bool Refill(std::vector<std::string> entries);

  /// Index of the selected entry, from 0; kNoSelection for none.
  int ListIndex() const { return listIndex_; }
  /// Text of the selected entry; empty for none.
  std::string Text() const;
  /// Selects an entry; an index that does not exist changes nothing.
  void Select(int index);
  /// Selects an entry as a user does; one that is selected already counts where PicksAgain says so.
  void Pick(int index);
  /// Selects the first entry with exactly this text.
  /// @return false if there is none; the selection stays then
  bool SelectText(std::string_view text);

  std::function<void()> OnClick;
  bool PicksAgain = false;  // a pick of the selected entry runs OnClick too, to try again what it stands for

 private:
  std::vector<std::string> entries_;
  int listIndex_ = kNoSelection;
};

}  // namespace keplo::ui
