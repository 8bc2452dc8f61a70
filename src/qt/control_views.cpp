#include "qt/control_views.h"

#include <QFrame>
#include <algorithm>
#include <array>

#include "qt/button_view.h"
#include "qt/caption_view.h"
#include "qt/check_box_view.h"
#include "qt/drop_down_view.h"
#include "qt/label_view.h"
#include "qt/long_label_view.h"
#include "qt/scroll_bar_view.h"
#include "qt/text.h"
#include "qt/text_box_view.h"
#include "qt/trace_view.h"

namespace keplo::qt {

namespace {

// Space between the frame of a field and its text, on each side, pixels.
constexpr int kIndent = 1;

/// The widest text that a field cannot scroll shows.
struct WidestText {
  std::string_view Control, Text;
};
constexpr std::array kWidestTexts = std::to_array<WidestText>({
    {"Frame1", "SONY params"},
    {"AddrVal", "32767"},
    {"CmdVal", "32767"},
    {"ToggleVal", "N"},
    {"ProcDelayparameter", "1000"},
    {"ReceiverType", "IRMouse"},
    {"ZoneNr", "8"},
    {"BitNr", "128"},
    {"GType", "2"},
    {"Rpt", "Y"},
    {"GProt", "UNKNOWN"},
});

template <typename Model>
Model& ModelAs(Form1& form, const ControlRow& row) {
  return form.*std::get<Model Form1::*>(row.Model);
}

/// The label of a control; null if it has none.
const ControlRow* LabelOf(const ControlRow& row) {
  const auto rows = Controls();
  const auto found = std::find_if(rows.begin(), rows.end(),
                                  [&](const ControlRow& label) { return label.LabelFor == row.Name; });
  return found == rows.end() ? nullptr : &*found;
}

/// A field that is not a tab stop is reached with the first letter of its label.
char AccessKeyOf(const ControlRow& label) {
  const ControlRow* field = FindControl(label.LabelFor);
  return field == nullptr || field->TabIndex != kNoTabStop ? '\0' : label.Caption.front();
}

QPalette::ColorRole GroundOf(SystemColour colour) {
  switch (colour) {
    case SystemColour::Menu:
    case SystemColour::ScrollBar:
      return QPalette::Window;
    case SystemColour::ButtonFace:
      return QPalette::Button;
    case SystemColour::Usual:
      break;
  }
  return QPalette::Base;
}

QWidget* MakeBoxedLabel(Form1& form, const ControlRow& row, QWidget* parent) {
  auto& label = ModelAs<ui::Label>(form, row);
  if (&label == &form.Signal) {
    const QRectF part(QPointF(row.Bounds.Left, row.Bounds.Top) / kTwipsPerPixel,
                      QSizeF(row.Bounds.Width, row.Bounds.Height) / kTwipsPerPixel);
    return new TraceView(form, part, parent);
  }
  // Fields with a label may have long texts; the others have a word or a number.
  if (LabelOf(row) != nullptr) return new LongLabelView(label, ShownText(row.Tip), parent);
  // Uses the background of the window, since it is not an input field.
  auto* view = new LabelView(label, row.Tip, parent, QPalette::Window);
  view->setFrameStyle(QFrame::Box | QFrame::Plain);
  view->setMargin(0);
  view->setIndent(kIndent);
  if (row.Kind == ControlKind::CentredLabel) view->setAlignment(Qt::AlignCenter);
  return view;
}

QWidget* MakeDropDown(Form1& form, const ControlRow& row, QWidget* parent) {
  auto* view = new DropDownView(ModelAs<ui::DropDownList>(form, row), parent);
  view->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  view->setMinimumContentsLength(1);
  return view;
}

QWidget* MakeLine(QWidget* parent) {
  auto* line = new QFrame(parent);
  line->setFrameStyle(QFrame::HLine | QFrame::Plain);
  return line;
}

QWidget* MakeView(Form1& form, const ControlRow& row, QWidget* parent) {
  switch (row.Kind) {
    case ControlKind::Label:
      return new CaptionView(ModelAs<ui::Label>(form, row), AccessKeyOf(row), parent);
    case ControlKind::BoxedLabel:
    case ControlKind::CentredLabel:
      return MakeBoxedLabel(form, row, parent);
    case ControlKind::TextBox:
      return new TextBoxView(ModelAs<ui::TextBox>(form, row), parent, GroundOf(row.System));
    case ControlKind::Button:
      return new ButtonView(ModelAs<ui::Button>(form, row), ShownCaption(row.Caption), parent);
    case ControlKind::CheckBox:
      return new CheckBoxView(ModelAs<ui::CheckBox>(form, row), ShownCaption(row.Caption), parent);
    case ControlKind::DropDownList:
      return MakeDropDown(form, row, parent);
    case ControlKind::ScrollBar:
      return new ScrollBarView(ModelAs<ui::ScrollBar>(form, row), parent);
    case ControlKind::Frame:
      return new FrameView(ModelAs<ui::Label>(form, row), parent);
    case ControlKind::Line:
      break;
  }
  return MakeLine(parent);
}

/// Sets what screen readers say: the caption of a control or, if it has none, its tip.
void Describe(const ControlRow& row, QWidget& view) {
  if (!row.Tip.empty() && view.toolTip().isEmpty()) view.setToolTip(ShownText(row.Tip));
  if (row.Kind == ControlKind::ScrollBar) {
    view.setAccessibleName(ShownText(FindControl("Signal")->Tip));
  } else if (row.Caption.empty() && view.accessibleName().isEmpty()) {
    view.setAccessibleName(ShownText(row.Tip));
  } else {
    view.setAccessibleDescription(ShownText(row.Tip));
  }
}

}  // namespace

QWidget* MakeControlView(Form1& form, const ControlRow& row, QWidget* parent) {
  QWidget* view = MakeView(form, row, parent);
  if (row.Font) {
    QFont font(ShownText(row.Font->Family));
    font.setPointSizeF(row.Font->Points);
    view->setFont(font);
  }
  Describe(row, *view);
  return view;
}

QSize LeastSize(const ControlRow& row, const QWidget& view) {
  const auto* const widest = std::find_if(kWidestTexts.begin(), kWidestTexts.end(),
                                          [&](const WidestText& text) { return text.Control == row.Name; });
  if (widest != kWidestTexts.end()) {
    const int around = 2 * (1 + kIndent);
    return view.fontMetrics().size(0, ShownText(widest->Text)) + QSize(around, around);
  }
  switch (row.Kind) {
    case ControlKind::Label:
    case ControlKind::Button:
    case ControlKind::CheckBox:
      return view.sizeHint();
    case ControlKind::TextBox:
    case ControlKind::DropDownList:
    case ControlKind::BoxedLabel:
      return view.minimumSizeHint();
    default:
      return {};
  }
}

}  // namespace keplo::qt
