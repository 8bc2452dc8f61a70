#pragma once

#include <QFrame>
#include <QWidget>

#include "qt/list_view_widget.h"
#include "qt/model_link.h"
#include "qt/popup_menu_view.h"
#include "qt/status_panel_view.h"
#include "qt/twip_scale.h"
#include "shell/keplo.h"

namespace keplo::qt {

/// The control on screen: status panel, event list and its pop-up menu. It is laid out in the control's
/// twips; with a font larger than the design's a twip takes more pixels, so that everything keeps its room.
///
/// View and control may go away in either order; a view without its control shows what it showed last.
class ControlView : public QWidget {
 public:
  ControlView(Keplo& control, QWidget* parent);

  /// @param shown runs whenever the list has been drawn again, after a change of its rows or of the
  /// highlighted
  ///        one, as long as the control lives
  void WhenListIsShown(std::function<void()> shown) { list_->OnShown = std::move(shown); }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Rescale();
  void FitIntoSize();

  Keplo& control_;
  QFrame* frame_;
  StatusPanelView* panel_;
  ListViewWidget* list_;
  PopupMenuView* menu_;
  TwipScale scale_;
};

}  // namespace keplo::qt
