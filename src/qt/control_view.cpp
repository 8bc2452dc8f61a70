#include "qt/control_view.h"

#include <QEvent>
#include <algorithm>

namespace keplo::qt {

namespace {

// Twips: the preferred size has space for all columns, a scroll bar and a dozen events, the minimum size for
// the panel and three events.
constexpr int kUsualWidth = 10300, kUsualHeight = 6000;
constexpr int kLeastWidth = 4935, kLeastHeight = 3500;

}  // namespace

ControlView::ControlView(Keplo& control, QWidget* parent)
    : QWidget(parent),
      control_(control),
      frame_(new QFrame(this)),
      panel_(new StatusPanelView(control.Panel, frame_)),
      list_(new ListViewWidget(control.ListView1, frame_)),
      menu_(new PopupMenuView(control.RightClickMenu, this)),
      scale_(logicalDpiX() / kTwipsPerInch) {
  setObjectName(QStringLiteral("Keplo"));
  frame_->setObjectName(QStringLiteral("Frame"));
  frame_->setFrameShape(QFrame::StyledPanel);
  list_->setObjectName(QStringLiteral("ListView1"));
  list_->setAccessibleName(tr("Events"));
  list_->OnMouseDown = [this](int button, const QPoint& place) {
    if (!list_->HasModel()) return;
    menu_->Position = place;
    control_.ListView1_MouseDown(button);
  };
  setFocusProxy(list_);
  Rescale();
}

QSize ControlView::sizeHint() const { return {scale_.ToPixels(kUsualWidth), scale_.ToPixels(kUsualHeight)}; }

QSize ControlView::minimumSizeHint() const {
  return {scale_.ToPixels(kLeastWidth), scale_.ToPixels(kLeastHeight)};
}

void ControlView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  FitIntoSize();
}

void ControlView::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) Rescale();
}

void ControlView::Rescale() {
  scale_ = TwipScale(
      std::max({logicalDpiX() / kTwipsPerInch, panel_->PixelsPerTwip(), list_->PixelsPerTwipForHeadings()}));
  panel_->SetScale(scale_);
  list_->SetScale(scale_);
  updateGeometry();
  FitIntoSize();
}

void ControlView::FitIntoSize() {
  if (!list_->HasModel()) return;
  control_.Resize(scale_.ToTwips(width()), scale_.ToTwips(height()));
  frame_->setGeometry(0, 0, scale_.ToPixels(control_.FrameWidth), scale_.ToPixels(control_.FrameHeight));
  const ui::ListView& list = control_.ListView1;
  const QRect placed(scale_.ToPixels(list.Left), scale_.ToPixels(list.Top), scale_.ToPixels(list.Width),
                     scale_.ToPixels(list.Height));
  // The model's list extends below the lower edge of the frame. The widget ends there, so that its last row
  // and its scroll bar are not cut off.
  list_->setGeometry(placed.intersected(frame_->contentsRect()));
}

}  // namespace keplo::qt
