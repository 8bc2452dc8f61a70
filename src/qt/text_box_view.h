#pragma once

#include <QLineEdit>

#include "qt/model_link.h"
#include "ui/text_box.h"

namespace keplo::qt {

/// An input field for a text box.
class TextBoxView : public QLineEdit {
 public:
  /// @param ground palette role of the background if the model has no back colour
  TextBoxView(ui::TextBox& model, QWidget* parent, QPalette::ColorRole ground = QPalette::Base);

 protected:
  bool event(QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void Redraw();
  void ShowColours();

  ui::TextBox& model_;
  QPalette::ColorRole ground_;
  bool showingColours_ = false;
  ModelLink link_;
};

}  // namespace keplo::qt
