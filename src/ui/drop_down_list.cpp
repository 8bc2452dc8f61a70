#include "ui/drop_down_list.h"

#include <algorithm>
#include <utility>

namespace keplo::ui {

void DropDownList::Clear() { SetEntries({}); }

void DropDownList::SetEntries(std::vector<std::string> entries) {
  entries_ = std::move(entries);
  listIndex_ = kNoSelection;
  Changed();
}

bool DropDownList::Refill(std::vector<std::string> entries) {
  const auto kept =
      listIndex_ == kNoSelection ? entries.end() : std::find(entries.begin(), entries.end(), Text());
  listIndex_ = kept == entries.end() ? kNoSelection : static_cast<int>(kept - entries.begin());
  entries_ = std::move(entries);
  Changed();
  return listIndex_ != kNoSelection;
}

void DropDownList::Add(std::string_view entry) {
  entries_.emplace_back(entry);
  Changed();
}

std::string DropDownList::Text() const {
  return listIndex_ == kNoSelection ? std::string() : entries_[static_cast<std::size_t>(listIndex_)];
}

void DropDownList::Select(int index) {
  if (index < 0 || index >= Count() || index == listIndex_) return;
  listIndex_ = index;
  Changed();
  if (OnClick) OnClick();
}

void DropDownList::Pick(int index) {
  if (index != listIndex_) {
    Select(index);
  } else if (PicksAgain && index != kNoSelection && OnClick) {
    OnClick();
  }
}

bool DropDownList::SelectText(std::string_view text) {
  const auto found = std::find(entries_.begin(), entries_.end(), text);
  if (found == entries_.end()) return false;
  Select(static_cast<int>(found - entries_.begin()));
  return true;
}

}  // namespace keplo::ui
