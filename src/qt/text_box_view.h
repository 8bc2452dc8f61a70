#pragma once

#include <QLineEdit>

#include "qt/model_link.h"
#include "ui/text_box.h"

namespace keplo::qt {

/// An edit field over a text box.
class TextBoxView : public QLineEdit {
 public:
  TextBoxView(ui::TextBox& model, QWidget* parent);

 private:
  void Redraw();

  ui::TextBox& model_;
  ModelLink link_;
};

}  // namespace keplo::qt
