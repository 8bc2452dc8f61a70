#pragma once

#include <QComboBox>
#include <string>
#include <vector>

#include "qt/model_link.h"
#include "ui/drop_down_list.h"

namespace keplo::qt {

/// A combo box over a drop-down list, which opens as wide as its entries. The mouse wheel turns it only while
/// it has the focus.
class DropDownView : public QComboBox {
 public:
  DropDownView(ui::DropDownList& model, QWidget* parent);

  void showPopup() override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void Redraw();
  /// The toolkit shades and pales a colour; here it stays what it is.
  void PaintColoured();

  ui::DropDownList& model_;
  std::vector<std::string> shown_;
  bool changed_ = false;  // by the click that is about to be told
  ModelLink link_;
};

}  // namespace keplo::qt
