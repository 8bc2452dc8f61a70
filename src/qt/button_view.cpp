#include "qt/button_view.h"

#include <QPointer>
#include <utility>

#include "qt/control_look.h"

namespace keplo::qt {

namespace {

// Padding on each side, pixels.
constexpr int kHorizontalPadding = 3, kVerticalPadding = 1;

}  // namespace

ButtonView::ButtonView(ui::Button& model, const QString& caption, QWidget* parent)
    : QPushButton(caption, parent), model_(model), link_(model.OnChanged, [this] { Redraw(); }) {
  setAutoDefault(true);  // Enter clicks the button that has the focus
  Redraw();
  connect(this, &QPushButton::clicked, this, [this] { Click(); });
}

QSize ButtonView::sizeHint() const {
  if (text().isEmpty()) return {};
  return fontMetrics().size(Qt::TextShowMnemonic, text()) +
         QSize(2 * kHorizontalPadding, 2 * kVerticalPadding);
}

void ButtonView::Click() {
  const QPointer<ButtonView> self(this);
  if (!link_.Alive()) return;
  inClick_ = true;
  model_.Click();
  if (self) inClick_ = false;
}

void ButtonView::Redraw() {
  KeepFocusWhileDisabled();
  ShowState(*this, model_);
  if (model_.Enabled() && std::exchange(hadFocus_, false)) setFocus();
  if (!inClick_ || model_.Enabled() == !working_) return;
  if (model_.Enabled()) {
    working_.reset();
  } else {
    working_.emplace();
    window()->repaint();
  }
}

void ButtonView::KeepFocusWhileDisabled() {
  if (model_.Enabled() || !isEnabled() || window()->focusWidget() != this) return;
  hadFocus_ = true;
  clearFocus();  // otherwise Qt moves it to the next field
}

}  // namespace keplo::qt
