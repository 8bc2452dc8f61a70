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

/// An ordered list of rows of six text fields, one of which may be selected. Rows count from 1, fields from
/// 0.
class ListView {
 public:
  static constexpr int kFields = 6;
  using Texts = std::array<std::string, kFields>;

  int Left = 0, Top = 0, Width = 0, Height = 0;  // twips

  /// Runs after every change of rows, texts, selection or columns.
  std::function<void()> OnChanged;

  /// The number of changes so far, for polling.
  std::uint64_t Changes() const { return changes_; }

  const std::vector<ListColumn>& Columns() const { return columns_; }
  void ClearColumns();
  void AddColumn(std::string_view heading, int width);

  int Count() const { return static_cast<int>(rows_.size()); }
  /// @throws Failure 35600 for a row that does not exist
  const std::string& Text(int row, int field) const;
  void SetText(int row, int field, std::string_view text);

  /// Appends an empty row. The key is optional, but must be unique.
  /// @return the number of the row
  /// @throws Failure 35602 if the key is taken
  int Add(std::string_view key = {});
  void Remove(int row);
  /// The first row with exactly this text in a field; 0 if there is none.
  int FindRow(int field, std::string_view text) const;

  /// The selected row; 0 if there is none.
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
