#pragma once

#include <QDialog>
#include <memory>

#include "qt/model_link.h"
#include "window/form1.h"
#include "window/new_protocol.h"

namespace keplo::qt {

/// The view of the protocol dialog.
class NewProtocolView : public QDialog {
 public:
  explicit NewProtocolView(NewProtocol& model);

  /// Esc and the close box.
  void reject() override;

 private:
  QLayout* Buttons();

  NewProtocol& model_;
  ModelLink titleLink_;
};

/// Shows the protocol dialog of a form instead of its window while the dialog is open.
class ProtocolDialogHost {
 public:
  ProtocolDialogHost(Form1& form, QWidget& window);

 private:
  /// A view may be closed by its own handlers.
  struct HideAndDeleteLater {
    void operator()(NewProtocolView* view) const {
      view->hide();
      view->deleteLater();
    }
  };

  void Update();
  void ShowDialog(NewProtocol& dialog);

  Form1& form_;
  QWidget& window_;
  QPoint place_;  // of the window, while the dialog stands in it
  std::unique_ptr<NewProtocolView, HideAndDeleteLater> view_;
  ModelLink link_;
};

}  // namespace keplo::qt
