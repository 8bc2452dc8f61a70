#include "qt/list_rows.h"

#include <algorithm>

#include "qt/text.h"

namespace keplo::qt {

namespace {

std::vector<ui::ListView::Texts> RowsOf(const ui::ListView& list) {
  std::vector<ui::ListView::Texts> rows(static_cast<std::size_t>(list.Count()));
  for (int row = 1; row <= list.Count(); ++row) {
    for (int field = 0; field < ui::ListView::kFields; ++field) {
      rows[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(field)] = list.Text(row, field);
    }
  }
  return rows;
}

}  // namespace

void ListRows::Show(const ui::ListView& list) {
  ShowHeadings(list);
  ShowTexts(list);
}

void ListRows::ShowHeadings(const ui::ListView& list) {
  std::vector<std::string> headings;
  for (const ui::ListColumn& column : list.Columns()) headings.push_back(column.Heading);
  if (headings == headings_) return;
  beginResetModel();
  headings_ = std::move(headings);
  endResetModel();
}

void ListRows::ShowTexts(const ui::ListView& list) {
  std::vector<ui::ListView::Texts> now = RowsOf(list);
  const auto firstChange = std::mismatch(rows_.begin(), rows_.end(), now.begin(), now.end()).first;
  const auto change = static_cast<int>(firstChange - rows_.begin());
  const auto was = static_cast<int>(rows_.size());
  const auto is = static_cast<int>(now.size());

  // Rows are only added at the end, but removed anywhere; changed texts are signalled below.
  if (is < was) beginRemoveRows({}, change, change + (was - is) - 1);
  if (is > was) beginInsertRows({}, was, is - 1);
  rows_ = std::move(now);
  if (is < was) endRemoveRows();
  if (is > was) endInsertRows();
  if (change < is) Q_EMIT dataChanged(index(change, 0), index(is - 1, ui::ListView::kFields - 1));
}

int ListRows::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ListRows::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(headings_.size());
}

QVariant ListRows::data(const QModelIndex& index, int role) const {
  const auto row = static_cast<std::size_t>(index.row());
  const auto field = static_cast<std::size_t>(index.column());
  if (row >= rows_.size() || field >= ui::ListView::kFields) return {};
  const QString text = ShownText(rows_[row][field]);
  if (role == Qt::DisplayRole) return text;
  // Shows what a narrow column cuts off. The paragraph makes the tip wrap.
  if (role == Qt::ToolTipRole) return QString(QLatin1String("<p>") + text.toHtmlEscaped());
  return {};
}

QVariant ListRows::headerData(int section, Qt::Orientation orientation, int role) const {
  const bool heading = orientation == Qt::Horizontal && section >= 0 && section < columnCount();
  if (!heading) return {};
  if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
  return role == Qt::DisplayRole ? ShownText(headings_[static_cast<std::size_t>(section)]) : QVariant();
}

}  // namespace keplo::qt
