#include "qt/check_box_view.h"

#include "qt/control_look.h"

namespace keplo::qt {

CheckBoxView::CheckBoxView(ui::CheckBox& model, const QString& caption, QWidget* parent)
    : QCheckBox(caption, parent), model_(model), link_(model.OnChanged, [this] { Redraw(); }) {
  Redraw();
  connect(this, &QCheckBox::toggled, this, [this](bool checked) {
    if (link_.Alive()) model_.SetChecked(checked);
  });
}

void CheckBoxView::Redraw() {
  setChecked(model_.Checked());
  ShowState(*this, model_);
}

}  // namespace keplo::qt
