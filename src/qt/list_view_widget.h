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

/// A table of rows over a list view; selections go both ways. Changes of the model are gathered and drawn
/// when the event loop comes round, so that filling a long list costs one redraw.
class ListViewWidget : public QTreeView {
 public:
  ListViewWidget(ui::ListView& model, QWidget* parent);

  /// A mouse button went down on the list, or the key that stands for the right one, at a place in screen
  /// coordinates: 1 left, 2 right, 4 middle.
  std::function<void(int button, const QPoint& place)> OnMouseDown;

  /// Runs after each redraw.
  std::function<void()> OnShown;

  /// Whether the list behind the table is still there.
  bool HasModel() const { return link_.Alive(); }

  /// Gives the columns their widths of the model.
  void SetScale(const TwipScale& scale);
  /// Pixels to a twip at which every heading fits into its column.
  double PixelsPerTwipForHeadings() const;

  /// Draws changes that are still waiting.
  void Refresh();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void ShowColumnWidths();
  void ShowSelection();
  void TakeSelection();
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
