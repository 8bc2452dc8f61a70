#pragma once

#include <QDialog>
#include <QLabel>

#include "qt/model_link.h"
#include "shell/frm_event.h"

namespace keplo::qt {

/// The view of the event dialog. The model must outlive it.
class EventDialogView : public QDialog {
 public:
  EventDialogView(frmEvent& model, QWidget* parent);

  /// Esc and the close box.
  void reject() override;

 private:
  QWidget* Details();
  QWidget* Command();
  QLayout* Buttons();

  frmEvent& model_;
  QLabel* hint_;
  ModelLink hintLink_;
  ModelLink titleLink_;
  ModelLink hideLink_;
};

}  // namespace keplo::qt
