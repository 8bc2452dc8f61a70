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

/// The view of the control: status panel, event list and its pop-up menu. It is laid out in twips, which
/// become larger with larger fonts, so that everything fits.
///
/// View and control may be destroyed in either order; a view without its control keeps showing its last
/// state.
class ControlView : public QWidget {
 public:
  ControlView(Keplo& control, QWidget* parent);

  /// @param shown runs after the list was updated because its rows or the highlighted row changed, as long as
  /// the
  ///        control exists
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
