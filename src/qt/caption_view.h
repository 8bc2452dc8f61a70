#pragma once

#include <QGroupBox>
#include <QLabel>

#include "qt/model_link.h"
#include "ui/label.h"

namespace keplo::qt {

/// A label without a box, usually the label of a field.
class CaptionView : public QLabel {
 public:
  /// @param accessKey letter of the text for reaching the label's buddy with Alt; NUL for none
  CaptionView(ui::Label& model, char accessKey, QWidget* parent);

 private:
  void Redraw();

  ui::Label& model_;
  char accessKey_;
  ModelLink link_;
};

/// A frame around other controls, with the text of a label as its heading.
class FrameView : public QGroupBox {
 public:
  FrameView(ui::Label& model, QWidget* parent);

 private:
  void Redraw();

  ui::Label& model_;
  ModelLink link_;
};

}  // namespace keplo::qt
