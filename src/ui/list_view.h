#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace keplo::ui {

struct ListColumn {
  std::string Heading;
  int Width;  // twips
};

/// Ordered rows of six text fields with a selected row, as the event list needs them. Rows count from 1,
/// fields from 0 (field 0 is the row's own text).
class ListView {
 public:
  static constexpr int kFields = 6;
  using Texts = std::array<std::string, kFields>;

  int Left = 0, Top = 0, Width = 0, Height = 0;  // twips

  /// Runs after every change of rows, texts, selection or columns; a view redraws there.
  std::function<void()> OnChanged;

  /// How often that has happened; for those that look now and then.
  std::uint64_t Changes() const { return changes_; }

  const std::vector<ListColumn>& Columns() const { return columns_; }
  void ClearColumns();
  void AddColumn(std::string_view heading, int width);

  int Count() const { return static_cast<int>(rows_.size()); }
  /// @throws Failure 35600 for a row that does not exist
  const std::string& Text(int row, int field) const;
  void SetText(int row, int field, std::string_view text);

  /// Adds an empty row at the end. A key is optional, but no two rows may carry the same one.
  /// @return the row's number
  /// @throws Failure 35602 for a key that is taken
  int Add(std::string_view key = {});
  void Remove(int row);
  /// First row whose field equals the text exactly, 0 for none.
  int FindRow(int field, std::string_view text) const;

  /// The selected row, 0 for none. A removed row takes its selection along.
  int SelectedRow() const { return selected_; }
  void Select(int row);

 private:
  struct Row {
    std::string Key;
    Texts Fields;
  };

  void CheckRow(int row) const;
  void Changed();

  std::vector<ListColumn> columns_;
  std::vector<Row> rows_;
  int selected_ = 0;
  std::uint64_t changes_ = 0;
};

}  // namespace keplo::ui
