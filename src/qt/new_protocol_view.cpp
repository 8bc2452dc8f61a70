#include "qt/new_protocol_view.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>
#include <QWindow>

#include "qt/button_view.h"
#include "qt/dialog_rows.h"
#include "qt/drop_down_view.h"
#include "qt/text.h"
#include "qt/text_box_view.h"

namespace keplo::qt {

namespace {

constexpr int kButtonLetters = 12;  // wide enough to be easy to hit

/// Makes the widget of a row.
struct ViewMaker {
  NewProtocol& Model;
  const NewProtocolRow& Row;
  QWidget* Parent;

  QWidget* operator()(ui::TextBox NewProtocol::*box) const { return new TextBoxView(Model.*box, Parent); }
  QWidget* operator()(ui::DropDownList NewProtocol::*list) const {
    return new DropDownView(Model.*list, Parent);
  }
  QWidget* operator()(ui::Button NewProtocol::*button) const {
    return new ButtonView(Model.*button, ShownCaption(Row.Caption, Row.AccessKey), Parent);
  }
};

QWidget* MakeView(NewProtocol& model, const NewProtocolRow& row, QWidget* parent) {
  QWidget* view = std::visit(ViewMaker{model, row, parent}, row.Model);
  SetIdentity(*view, row.Name, row.Caption, row.Tip);
  return view;
}

bool IsButton(const NewProtocolRow& row) {
  return std::holds_alternative<ui::Button NewProtocol::*>(row.Model);
}

}  // namespace

NewProtocolView::NewProtocolView(NewProtocol& model)
    : model_(model), titleLink_(model.OnTitleChanged, [this] { setWindowTitle(ShownText(model_.Title())); }) {
  setObjectName(QStringLiteral("NewProtocol"));
  setWindowTitle(ShownText(model.Title()));
  setWindowModality(Qt::ApplicationModal);  // like the main window, which a host's window has to wait for
  auto* fields = new QGridLayout;
  for (const NewProtocolRow& row : NewProtocolControls()) {
    if (IsButton(row)) continue;
    AddLabelledRow(*fields, ShownCaption(row.Caption, row.AccessKey), *MakeView(model_, row, this));
  }
  auto* whole = new QVBoxLayout(this);
  whole->addLayout(fields);
  whole->addStretch(1);
  whole->addLayout(Buttons());
  // Selects the proposed name, which is filled in later, so that typing replaces it.
  if (auto* name = findChild<QLineEdit*>(QStringLiteral("CProtIn"))) {
    QTimer::singleShot(0, name, &QLineEdit::selectAll);
  }
}

QLayout* NewProtocolView::Buttons() {
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  for (const NewProtocolRow& row : NewProtocolControls()) {
    if (!IsButton(row)) continue;
    QWidget* button = MakeView(model_, row, this);
    button->setMinimumSize(LettersWide(*button, kButtonLetters), button->fontMetrics().height() * 2);
    buttons->addWidget(button);
  }
  return buttons;
}

void NewProtocolView::reject() {
  if (titleLink_.Alive()) model_.CancelButton_Click();
}

ProtocolDialogHost::ProtocolDialogHost(Form1& form, QWidget& window)
    : form_(form), window_(window), link_(form.OnProtocolDialog, [this] { Update(); }) {}

void ProtocolDialogHost::Update() {
  if (NewProtocol* dialog = form_.ProtocolDialog()) {
    ShowDialog(*dialog);
    return;
  }
  // Else the window system takes it for a new window and looks for a place. The widget itself tells it of
  // changes alone.
  if (QWindow* handle = window_.windowHandle()) handle->setPosition(place_);
  window_.show();
  window_.activateWindow();
  view_.reset();
}

void ProtocolDialogHost::ShowDialog(NewProtocol& dialog) {
  view_.reset(new NewProtocolView(dialog));
  view_->resize(view_->sizeHint());  // adjustSize is limited to two thirds of the screen
  view_->move(window_.geometry().center() - view_->rect().center());
  view_->show();
  view_->activateWindow();
  place_ = window_.geometry().topLeft();
  window_.hide();
}

}  // namespace keplo::qt
