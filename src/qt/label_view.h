#pragma once

#include <QLabel>

#include "qt/model_link.h"
#include "ui/label.h"

namespace keplo::qt {

/// A boxed label with a back colour and legible text.
class LabelView : public QLabel {
 public:
  /// @param caption describes the field; screen readers speak it before the text
  /// @param ground palette role of the background if the model has no back colour
  LabelView(ui::Label& model, std::string_view caption, QWidget* parent,
            QPalette::ColorRole ground = QPalette::Base);

 private:
  void Redraw();

  ui::Label& model_;
  QString caption_;
  ModelLink link_;
};

}  // namespace keplo::qt
