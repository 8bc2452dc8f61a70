#pragma once

#include <QDialog>
#include <QLabel>

#include "qt/model_link.h"
#include "shell/frm_event.h"

namespace keplo::qt {

/// The widgets of the event dialog over its model. The model outlives it.
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
