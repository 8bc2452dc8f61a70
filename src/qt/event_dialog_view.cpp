#include "qt/event_dialog_view.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "qt/check_box_view.h"
#include "qt/dialog_rows.h"
#include "qt/drop_down_view.h"
#include "qt/text.h"
#include "qt/text_box_view.h"

namespace keplo::qt {

namespace {

/// The texts of a field of the dialog.
struct Field {
  const char* Name;
  std::string_view Label;
  char AccessKey;
  std::string_view Tip = {};
};

class Form : public QGroupBox {
 public:
  Form(std::string_view title, QWidget* parent) : QGroupBox(ShownCaption(title), parent), rows_(this) {
    rows_.setColumnStretch(1, 1);
  }

  QLabel* AddRow(const Field& field, QWidget* widget) {
    PresentField(field, *widget);
    return AddLabelledRow(rows_, ShownCaption(field.Label, field.AccessKey), *widget);
  }

  void AddUnlabelledRow(const Field& field, QWidget* widget) {
    rows_.addWidget(widget, rows_.rowCount(), 1);
    PresentField(field, *widget);
  }

 private:
  static void PresentField(const Field& field, QWidget& widget) {
    std::string_view spoken = field.Label;
    if (spoken.ends_with(':')) spoken.remove_suffix(1);
    SetIdentity(widget, field.Name, spoken, field.Tip);
  }

  QGridLayout rows_;
};

/// Makes a list as wide as its form instead of its entries, which may be wider than any sensible dialog.
DropDownView* Narrow(DropDownView* list) {
  list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  list->setMinimumContentsLength(1);
  list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  return list;
}

/// Aligns the left edges of the fields of all forms.
void AlignFields(const std::array<QWidget*, 2>& forms) {
  int widest = 0;
  for (const QWidget* form : forms) {
    for (const QLabel* label : form->findChildren<QLabel*>())
      widest = std::max(widest, label->sizeHint().width());
  }
  for (const QWidget* form : forms) form->findChild<QGridLayout*>()->setColumnMinimumWidth(0, widest);
}

}  // namespace

EventDialogView::EventDialogView(frmEvent& model, QWidget* parent)
    : QDialog(parent),
      model_(model),
      hint_(new QLabel(this)),
      hintLink_(model.Hint.OnChanged, [this] { hint_->setText(ShownText(model_.Hint.Text())); }),
      titleLink_(model.OnTitleChanged, [this] { setWindowTitle(ShownText(model_.Title())); }),
      hideLink_(model.OnHide, [this] { done(QDialog::Accepted); }) {
  setObjectName(QStringLiteral("frmEvent"));
  setWindowTitle(ShownText(model.Title()));
  auto* rows = new QVBoxLayout(this);
  const std::array forms = {Details(), Command()};
  AlignFields(forms);
  for (QWidget* form : forms) rows->addWidget(form);
  rows->addStretch(1);
  rows->addLayout(Buttons());
}

QWidget* EventDialogView::Details() {
  using F = frmEvent;
  auto* form = new Form(F::kDetailsFrame, this);
  form->AddRow({"EventName", F::kEventNameLabel, 'n', F::kEventNameTip},
               new TextBoxView(model_.EventName, form));
  form->AddRow({"EventDescription", F::kEventDescriptionLabel, 'D', F::kEventDescriptionTip},
               new TextBoxView(model_.EventDescription, form));
  form->AddUnlabelledRow({"EvtEnable", F::kEnableCaption, 'E'},
                         new CheckBoxView(model_.EvtEnable, ShownCaption(F::kEnableCaption, 'E'), form));
  return form;
}

QWidget* EventDialogView::Command() {
  using F = frmEvent;
  auto* form = new Form(F::kCommandFrame, this);
  form->AddRow({"Protocol", F::kProtocolLabel, 'P'}, Narrow(new DropDownView(model_.Protocol, form)));
  form->AddRow({"SendCmd", F::kSendCmdLabel, 'C'}, Narrow(new DropDownView(model_.SendCmd, form)));
  auto* zones = new DropDownView(model_.ZoneListBox, form);
  QLabel* label = form->AddRow({"ZoneListBox", F::kVexilLabel, 'Z', F::kZoneTip}, Narrow(zones));
  label->setObjectName(QStringLiteral("VexilLabel"));
  label->setVisible(model_.ZoneVisible);
  model_.ZoneListBox.SetVisible(model_.ZoneVisible);
  return form;
}

QLayout* EventDialogView::Buttons() {
  auto* accept = new QPushButton(QStringLiteral("&OK"), this);
  accept->setObjectName(QStringLiteral("OKButton"));
  accept->setDefault(true);
  connect(accept, &QPushButton::clicked, this, [this] { model_.OKButton_Click(); });
  auto* cancel = new QPushButton(QStringLiteral("C&ancel"), this);
  cancel->setObjectName(QStringLiteral("CancelButton"));
  connect(cancel, &QPushButton::clicked, this, [this] { model_.CancelButton_Click(); });

  auto* buttons = new QHBoxLayout;
  hint_->setObjectName(QStringLiteral("Hint"));
  hint_->setTextFormat(Qt::PlainText);
  buttons->addWidget(hint_, 1);
  buttons->addWidget(accept);
  buttons->addWidget(cancel);
  return buttons;
}

void EventDialogView::reject() { model_.CancelButton_Click(); }

}  // namespace keplo::qt
