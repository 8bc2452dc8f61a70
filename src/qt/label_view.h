#pragma once

#include <QLabel>

#include "qt/model_link.h"
#include "ui/label.h"

namespace keplo::qt {

/// A boxed field that shows a label with its back colour; the letters are black or white, whichever reads
/// better on it.
class LabelView : public QLabel {
 public:
  /// @param caption what the field tells, for a screen reader, which speaks it before the text
  /// @param ground role of the palette that the field stands on while its model has no back colour
  LabelView(ui::Label& model, std::string_view caption, QWidget* parent,
            QPalette::ColorRole ground = QPalette::Base);

 private:
  void Redraw();

  ui::Label& model_;
  QString caption_;
  ModelLink link_;
};

}  // namespace keplo::qt
