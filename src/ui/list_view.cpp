#include "ui/list_view.h"

#include <algorithm>

#include "failure.h"

namespace keplo::ui {

namespace {

// The failure numbers that hosts expect from a list control.
constexpr int kIndexOutOfBounds = 35600;
constexpr int kKeyNotUnique = 35602;

std::size_t At(int number) { return static_cast<std::size_t>(number - 1); }

}  // namespace

void ListView::ClearColumns() {
  columns_.clear();
  Changed();
}

void ListView::AddColumn(std::string_view heading, int width) {
  columns_.push_back({std::string(heading), width});
  Changed();
}

const std::string& ListView::Text(int row, int field) const {
  CheckRow(row);
  return rows_[At(row)].Fields.at(static_cast<std::size_t>(field));
}

void ListView::SetText(int row, int field, std::string_view text) {
  CheckRow(row);
  std::string& current = rows_[At(row)].Fields.at(static_cast<std::size_t>(field));
  if (current == text) return;
  current = text;
  Changed();
}

int ListView::Add(std::string_view key) {
  const bool taken =
      !key.empty() && std::any_of(rows_.begin(), rows_.end(), [&](const Row& row) { return row.Key == key; });
  if (taken)
    throw Failure(kKeyNotUnique, "The event list already has a row with the key " + std::string(key));
  rows_.push_back({std::string(key), {}});
  Changed();
  return Count();
}

void ListView::Remove(int row) {
  CheckRow(row);
  rows_.erase(rows_.begin() + (row - 1));
  if (selected_ == row) {
    selected_ = 0;
  } else if (selected_ > row) {
    --selected_;
  }
  Changed();
}

int ListView::FindRow(int field, std::string_view text) const {
  for (int row = 1; row <= Count(); ++row) {
    if (Text(row, field) == text) return row;
  }
  return 0;
}

void ListView::Select(int row) {
  if (row != 0) CheckRow(row);
  if (row == selected_) return;
  selected_ = row;
  Changed();
}

void ListView::CheckRow(int row) const {
  if (row < 1 || row > Count()) {
    throw Failure(kIndexOutOfBounds, "The event list has no row " + std::to_string(row));
  }
}

void ListView::Changed() {
  ++changes_;
  if (OnChanged) OnChanged();
}

}  // namespace keplo::ui
