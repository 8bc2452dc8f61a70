#pragma once

#include <QGroupBox>
#include <QLabel>

#include "qt/model_link.h"
#include "ui/label.h"

namespace keplo::qt {

/// A label without a box: the words before a field.
class CaptionView : public QLabel {
 public:
  /// @param accessKey letter of the text that Alt reaches the label's buddy by; NUL for none
  CaptionView(ui::Label& model, char accessKey, QWidget* parent);

 private:
  void Redraw();

  ui::Label& model_;
  char accessKey_;
  ModelLink link_;
};

/// A frame around other controls, with a label's text as its heading.
class FrameView : public QGroupBox {
 public:
  FrameView(ui::Label& model, QWidget* parent);

 private:
  void Redraw();

  ui::Label& model_;
  ModelLink link_;
};

}  // namespace keplo::qt
