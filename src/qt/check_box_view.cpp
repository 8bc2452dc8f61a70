#include "qt/check_box_view.h"

namespace keplo::qt {

CheckBoxView::CheckBoxView(ui::CheckBox& model, const QString& caption, QWidget* parent)
    : QCheckBox(caption, parent),
      model_(model),
      link_(model.OnChanged, [this] { setChecked(model_.Checked()); }) {
  setChecked(model.Checked());
  connect(this, &QCheckBox::toggled, this, [this](bool checked) {
    if (link_.Alive()) model_.SetChecked(checked);
  });
}

}  // namespace keplo::qt
