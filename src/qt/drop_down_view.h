#pragma once

#include <QComboBox>
#include <string>
#include <vector>

#include "qt/model_link.h"
#include "ui/drop_down_list.h"

namespace keplo::qt {

/// A combo box for a drop-down list. Its popup is as wide as its entries. The mouse wheel only changes it
/// while it has the focus.
class DropDownView : public QComboBox {
 public:
  DropDownView(ui::DropDownList& model, QWidget* parent);

  void showPopup() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Redraw();
  /// Paints the exact back colour, which the style would shade.
  void PaintColoured();

  ui::DropDownList& model_;
  std::vector<std::string> shown_;
  bool changed_ = false;  // by a click whose activated signal is still to come
  ModelLink link_;
};

}  // namespace keplo::qt
