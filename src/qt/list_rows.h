#pragma once

#include <QAbstractTableModel>
#include <vector>

#include "ui/list_view.h"

namespace keplo::qt {

/// The rows of a list view as Qt's item views read them: a copy, brought up to date by Show, so that a view
/// never looks at a row that has gone.
class ListRows : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;

  /// Takes over what the list holds now. Rows that stay keep their place, selection and scroll position.
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
