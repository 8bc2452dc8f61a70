#include "qt/drop_down_view.h"

#include <QAbstractItemView>
#include <QPointer>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStylePainter>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "qt/control_look.h"
#include "qt/text.h"

namespace keplo::qt {

namespace {

constexpr int kFocusPen = 2;         // pixels
constexpr double kArrowParts = 4.5;  // line height divided by half the width of the arrow

}  // namespace

DropDownView::DropDownView(ui::DropDownList& model, QWidget* parent)
    : QComboBox(parent), model_(model), link_(model.OnChanged, [this] { Redraw(); }) {
  setFocusPolicy(Qt::StrongFocus);  // the default also takes the focus on a turn of the wheel
  Redraw();
  connect(this, &QComboBox::currentIndexChanged, this, [this](int index) {
    if (!link_.Alive()) return;
    const QPointer<DropDownView> self(this);
    changed_ = true;
    model_.Select(index);
    // A change that was not made by a click has no activated signal.
    if (self) QTimer::singleShot(0, this, [this] { changed_ = false; });
  });
  connect(this, &QComboBox::activated, this, [this](int index) {
    const bool isHandled = std::exchange(changed_, false);
    if (!isHandled && link_.Alive()) model_.Pick(index);
  });
}

void DropDownView::Redraw() {
  const QSignalBlocker ownChangesOnly(this);
  const std::vector<std::string>& entries = model_.Entries();
  const bool onlyAdded =
      shown_.size() <= entries.size() && std::equal(shown_.begin(), shown_.end(), entries.begin());
  if (!onlyAdded) {
    clear();
    shown_.clear();
  }
  while (shown_.size() < entries.size()) {
    shown_.push_back(entries[shown_.size()]);
    addItem(ShownText(shown_.back()));
  }
  setCurrentIndex(model_.ListIndex());  // adding to an empty combo box selects its first entry
  setPalette(PaletteOf(model_, QPalette::Button, QPalette::ButtonText));
  ShowState(*this, model_);
}

void DropDownView::wheelEvent(QWheelEvent* event) {
  event->setAccepted(hasFocus());
  if (hasFocus()) QComboBox::wheelEvent(event);
}

void DropDownView::paintEvent(QPaintEvent* event) {
  if (link_.Alive() && model_.BackColour()) {
    PaintColoured();
  } else {
    QComboBox::paintEvent(event);
  }
}

void DropDownView::PaintColoured() {
  QStyleOptionComboBox look;
  initStyleOption(&look);
  QStylePainter painter(this);
  painter.fillRect(rect(), look.palette.button());
  const QColor ink = look.palette.color(QPalette::ButtonText);
  const bool focused = hasFocus();
  painter.setPen(QPen(focused ? look.palette.color(QPalette::Highlight) : ink, focused ? kFocusPen : 1));
  const int inset = focused ? kFocusPen / 2 : 0;
  painter.drawRect(rect().adjusted(inset, inset, -1 - inset, -1 - inset));
  painter.drawControl(QStyle::CE_ComboBoxLabel, look);

  QRectF arrow = style()->subControlRect(QStyle::CC_ComboBox, &look, QStyle::SC_ComboBoxArrow, this);
  const double half = fontMetrics().height() / kArrowParts;
  const QPointF middle = arrow.center();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(ink);
  painter.drawPolygon(QPolygonF({middle + QPointF(-half, -half / 2), middle + QPointF(half, -half / 2),
                                 middle + QPointF(0, half / 2)}));
}

void DropDownView::showPopup() {
  view()->setMinimumWidth(view()->sizeHintForColumn(0) + view()->verticalScrollBar()->sizeHint().width());
  QComboBox::showPopup();
}

}  // namespace keplo::qt
