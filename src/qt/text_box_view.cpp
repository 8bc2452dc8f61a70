#include "qt/text_box_view.h"

#include "qt/text.h"

namespace keplo::qt {

TextBoxView::TextBoxView(ui::TextBox& model, QWidget* parent)
    : QLineEdit(parent), model_(model), link_(model.OnChanged, [this] { Redraw(); }) {
  Redraw();
  connect(this, &QLineEdit::textEdited, this, [this](const QString& typed) {
    if (link_.Alive()) model_.SetText(TypedText(typed));
  });
}

void TextBoxView::Redraw() {
  // Setting the same text again would move the cursor under the user's hands.
  if (const QString shown = ShownText(model_.Text()); shown != text()) setText(shown);
}

}  // namespace keplo::qt
