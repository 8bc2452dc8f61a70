#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "ui/list_view.h"

namespace keplo::qt {

/// The rows of a list view for Qt's item views. It is a copy, updated by Show, so that a view never reads a
/// row that no longer exists.
class ListRows : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  /// Copies the list. Rows that stay keep their selection and scroll position.
  void Show(const ui::ListView& list);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  void ShowHeadings(const ui::ListView& list);
  void ShowTexts(const ui::ListView& list);

  std::vector<std::string> headings_;
  std::vector<ui::ListView::Texts> rows_;
};

}  // namespace keplo::qt
