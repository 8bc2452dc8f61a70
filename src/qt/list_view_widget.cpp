#include "qt/list_view_widget.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <algorithm>

namespace keplo::qt {

namespace {

/// Adds some space to rows.
class RowDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const QSize text = QStyledItemDelegate::sizeHint(option, index);
    return {text.width(), text.height() + option.fontMetrics.height() / 3};
  }
};

bool AsksForMenu(const QKeyEvent& event) {
  return event.key() == Qt::Key_Menu ||
         (event.key() == Qt::Key_F10 && event.modifiers().testFlag(Qt::ShiftModifier));
}

}  // namespace

ListViewWidget::ListViewWidget(ui::ListView& model, QWidget* parent)
    : QTreeView(parent),
      model_(model),
      scale_(logicalDpiX() / kTwipsPerInch),
      link_(model.OnChanged, [this] { redraw_.start(); }) {
  redraw_.setSingleShot(true);
  redraw_.setInterval(0);
  redraw_.callOnTimeout(this, [this] { Refresh(); });
  setModel(&rows_);
  setItemDelegate(new RowDelegate(this));
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  setAllColumnsShowFocus(true);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setTabKeyNavigation(false);
  header()->setStretchLastSection(false);
  header()->setSectionsMovable(false);
  connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { ApplySelection(); });
  Refresh();
}

void ListViewWidget::SetScale(const TwipScale& scale) {
  scale_ = scale;
  shownWidths_.clear();
  ShowColumnWidths();
}

double ListViewWidget::PixelsPerTwipForHeadings() const {
  double needed = 0;
  if (!link_.Alive()) return needed;
  const auto shown = static_cast<int>(
      std::min<std::size_t>(model_.Columns().size(), static_cast<std::size_t>(header()->count())));
  for (int column = 0; column < shown; ++column) {
    const int width = model_.Columns()[static_cast<std::size_t>(column)].Width;
    if (width > 0) needed = std::max(needed, static_cast<double>(header()->sectionSizeHint(column)) / width);
  }
  return needed;
}

void ListViewWidget::Refresh() {
  redraw_.stop();
  if (!link_.Alive()) return;
  const QScopedValueRollback<bool> fromTheModel(refreshing_, true);
  rows_.Show(model_);
  ShowColumnWidths();
  ShowSelection();
  if (OnShown) OnShown();
}

void ListViewWidget::ShowColumnWidths() {
  if (!link_.Alive()) return;
  std::vector<int> widths;
  for (const ui::ListColumn& column : model_.Columns()) widths.push_back(column.Width);
  if (widths == shownWidths_) return;  // keeps widths changed by the user
  shownWidths_ = widths;
  for (int column = 0; column < static_cast<int>(widths.size()); ++column) {
    setColumnWidth(column, scale_.ToPixels(widths[static_cast<std::size_t>(column)]));
  }
}

void ListViewWidget::ShowSelection() {
  const int selected = model_.SelectedRow();
  if (selected == 0) {
    clearSelection();
  } else {
    setCurrentIndex(rows_.index(selected - 1, 0));
  }
}

void ListViewWidget::ApplySelection() {
  if (refreshing_ || !link_.Alive()) return;
  const QModelIndexList selected = selectionModel()->selectedRows();
  model_.Select(selected.isEmpty() ? 0 : selected.first().row() + 1);
}

void ListViewWidget::mousePressEvent(QMouseEvent* event) {
  if (redraw_.isActive()) Refresh();  // so that the press hits the current rows
  QTreeView::mousePressEvent(event);
  if (OnMouseDown) OnMouseDown(event->button(), event->globalPosition().toPoint());
}

void ListViewWidget::keyPressEvent(QKeyEvent* event) {
  if (redraw_.isActive()) Refresh();
  if (!AsksForMenu(*event)) {
    QTreeView::keyPressEvent(event);
  } else if (OnMouseDown) {
    OnMouseDown(Qt::RightButton, MenuPlace());
  }
}

void ListViewWidget::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();  // already handled as a mouse or key press
}

QPoint ListViewWidget::MenuPlace() const {
  const QModelIndexList selected = selectionModel()->selectedRows();
  const QRect row = selected.isEmpty() ? QRect() : visualRect(selected.first());
  const bool inSight = row.isValid() && viewport()->rect().intersects(row);
  return viewport()->mapToGlobal(inSight ? QPoint(0, row.bottom()) : QPoint(0, 0));
}

}  // namespace keplo::qt
