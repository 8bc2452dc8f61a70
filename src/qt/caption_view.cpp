#include "qt/caption_view.h"

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

CaptionView::CaptionView(ui::Label& model, char accessKey, QWidget* parent)
    : QLabel(parent), model_(model), accessKey_(accessKey), link_(model.OnChanged, [this] { Redraw(); }) {
  setTextFormat(Qt::PlainText);
  setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  Redraw();
}

void CaptionView::Redraw() {
  setText(accessKey_ == '\0' ? ShownText(model_.Text()) : ShownCaption(model_.Text(), accessKey_));
  ShowState(*this, model_);
}

FrameView::FrameView(ui::Label& model, QWidget* parent)
    : QGroupBox(parent), model_(model), link_(model.OnChanged, [this] { Redraw(); }) {
  Redraw();
}

void FrameView::Redraw() {
  setTitle(ShownCaption(model_.Text()));
  ShowState(*this, model_);
}

}  // namespace keplo::qt
