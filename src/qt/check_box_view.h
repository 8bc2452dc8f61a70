#pragma once

#include <QCheckBox>

#include "qt/model_link.h"
#include "ui/check_box.h"

namespace keplo::qt {

/// A check box for a model.
class CheckBoxView : public QCheckBox {
 public:
  CheckBoxView(ui::CheckBox& model, const QString& caption, QWidget* parent);

 private:
  void Redraw();

  ui::CheckBox& model_;
  ModelLink link_;
};

}  // namespace keplo::qt
