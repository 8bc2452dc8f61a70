#pragma once

#include <QPoint>
#include <QTimer>
#include <QTreeView>
#include <functional>

#include "qt/list_rows.h"
#include "qt/model_link.h"
#include "qt/twip_scale.h"
#include "ui/list_view.h"

namespace keplo::qt {

/// The view of a list view; selections are passed in both directions. Changes of the model are collected
/// until the event loop runs, so that filling a long list causes a single update.
class ListViewWidget : public QTreeView {
 public:
  ListViewWidget(ui::ListView& model, QWidget* parent);

  /// Runs when a mouse button (1 left, 2 right, 4 middle) was pressed on the list, or the menu key, which
  /// counts as the right button. The place is in screen coordinates.
  std::function<void(int button, const QPoint& place)> OnMouseDown;

  /// Runs after each update.
  std::function<void()> OnShown;

  /// Whether the model still exists.
  bool HasModel() const { return link_.Alive(); }

  /// Sets the scale of the model's column widths.
  void SetScale(const TwipScale& scale);
  /// The smallest scale, in pixels per twip, at which every heading fits its column.
  double PixelsPerTwipForHeadings() const;

  /// Shows pending changes at once.
  void Refresh();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void ShowColumnWidths();
  void ShowSelection();
  void ApplySelection();
  QPoint MenuPlace() const;

  ui::ListView& model_;
  ListRows rows_;
  TwipScale scale_;
  QTimer redraw_;
  bool refreshing_ = false;
  std::vector<int> shownWidths_;  // twips
  ModelLink link_;
};

}  // namespace keplo::qt
