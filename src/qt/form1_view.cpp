#include "qt/form1_view.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QStyle>
#include <QWindow>
#include <algorithm>
#include <memory>
#include <vector>

#include "qt/control_views.h"
#include "qt/open_manual.h"
#include "qt/qt_boxes.h"
#include "qt/recording_dialogs.h"
#include "qt/remote_dialogs.h"
#include "qt/text.h"

namespace keplo::qt {

namespace {

QRect Pixels(const Place& place, const TwipScale& scale) {
  return {scale.ToPixels(place.Left), scale.ToPixels(place.Top), scale.ToPixels(place.Width),
          std::max(scale.ToPixels(place.Height), 1)};
}

}  // namespace

Form1View::Form1View(Form1& form, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint),
      form_(form),
      menuBar_(new MenuBarView(form, this)),
      scrolled_(new QScrollArea(this)),
      inside_(new QWidget),
      scale_(logicalDpiX() / kTwipsPerInch),
      timer_(form.Timer1),
      fileTimer_(form.FileTimer),
      titleLink_(form.OnTitleChanged, [this] { setWindowTitle(ShownText(form_.Title())); }),
      sizeLink_(form.OnResize, [this] { FitSize(); }),
      hideLink_(form.OnHide, [this] { hide(); }),
      protocolDialog_(form, *this) {
  setObjectName(QStringLiteral("Form1"));
  setWindowTitle(ShownText(form.Title()));
  scrolled_->setFrameShape(QFrame::NoFrame);
  scrolled_->setFocusPolicy(Qt::NoFocus);
  scrolled_->setWidget(inside_);
  for (const ControlRow& row : Controls()) AddControl(row);
  AddTabOrder();
  auto* toTrace = new QShortcut(Qt::ALT | Qt::Key_W, this);
  QWidget* trace = views_.at(FindControl("Signal"));
  connect(toTrace, &QShortcut::activated, trace, [trace] { trace->setFocus(Qt::ShortcutFocusReason); });
  Rescale();
  wait_.emplace(*this, *views_.at(FindControl("Signal")));
  form_.OnWait = [this](std::string_view text) { wait_->Show(text); };
  form_.Programs = {OpenManual, OpenWebPage};
  form_.Recordings = PickRecordings(this);
  form_.Remotes = PickRemotes(this);
}

Form1View::~Form1View() {
  form_.OnWait = nullptr;
  form_.Recordings = {};
  form_.Remotes = {};
}

void Form1View::AddControl(const ControlRow& row) {
  const ControlRow* frame = FindControl(row.Frame);
  QWidget* view = MakeControlView(form_, row, frame == nullptr ? inside_ : views_.at(frame));
  view->setObjectName(ShownText(row.Name));
  views_.emplace(&row, view);
}

void Form1View::AddTabOrder() {
  std::vector<const ControlRow*> stops;
  for (const auto& [row, view] : views_) {
    if (row->TabIndex != kNoTabStop) {
      stops.push_back(row);
    } else if (view->focusPolicy() != Qt::NoFocus) {
      view->setFocusPolicy(Qt::ClickFocus);
    }
    if (const ControlRow* named = FindControl(row->LabelFor)) {
      dynamic_cast<QLabel&>(*view).setBuddy(views_.at(named));
    }
  }
  std::sort(stops.begin(), stops.end(),
            [](const ControlRow* a, const ControlRow* b) { return a->TabIndex < b->TabIndex; });
  for (std::size_t i = 1; i < stops.size(); ++i) setTabOrder(views_.at(stops[i - 1]), views_.at(stops[i]));
  if (!stops.empty()) views_.at(stops.front())->setFocus();
  connect(qApp, &QApplication::focusChanged, scrolled_, [this](const QWidget* /*old*/, QWidget* now) {
    if (now != nullptr && inside_->isAncestorOf(now)) BringIntoSight(*now);
  });
}

void Form1View::BringIntoSight(QWidget& view) {
  scrolled_->ensureWidgetVisible(&view);
  // What is wider than the window is read from its beginning.
  if (view.width() > scrolled_->viewport()->width())
    scrolled_->horizontalScrollBar()->setValue(view.mapTo(inside_, QPoint()).x());
}

double Form1View::PixelsPerTwip() const {
  double pixels = logicalDpiX() / kTwipsPerInch;
  for (const auto& [row, view] : views_) {
    const QSize needed = LeastSize(*row, *view);
    if (row->Bounds.Width > 0)
      pixels = std::max(pixels, static_cast<double>(needed.width()) / row->Bounds.Width);
    if (row->Bounds.Height > 0)
      pixels = std::max(pixels, static_cast<double>(needed.height()) / row->Bounds.Height);
  }
  return pixels;
}

void Form1View::Rescale() {
  scale_ = TwipScale(PixelsPerTwip());
  for (const auto& [row, view] : views_) view->setGeometry(Pixels(row->Bounds, scale_));
  FitSize();
}

void Form1View::FitSize() {
  const Size outer = form_.OuterSize();
  const QSize inner(scale_.ToPixels(outer.Width - kWindowEdges.Width),
                    scale_.ToPixels(outer.Height - kWindowEdges.Height));
  const int menuHeight = menuBar_->heightForWidth(inner.width());
  inside_->resize(inner);
  const QSize shown = ShownPart(inner, menuHeight);
  menuBar_->setGeometry(0, 0, shown.width(), menuHeight);
  scrolled_->setGeometry(0, menuHeight, shown.width(), shown.height());
  setFixedSize(shown.width(), menuHeight + shown.height());
}

QSize Form1View::ShownPart(const QSize& inner, int menuHeight) const {
  const QSize edges(scale_.ToPixels(kWindowEdges.Width), scale_.ToPixels(kWindowEdges.Height) + menuHeight);
  const QSize room = screen()->availableSize() - edges;
  QSize shown = inner.boundedTo(room);
  // A scroll bar in one direction takes space from the other.
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  if (shown.height() < inner.height()) shown.setWidth(std::min(inner.width() + bar, room.width()));
  if (shown.width() < inner.width()) shown.setHeight(std::min(inner.height() + bar, room.height()));
  return shown;
}

void Form1View::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) Rescale();
}

bool Form1View::focusNextPrevChild(bool next) {
  // Skips controls outside the part that is visible at the small size.
  for (std::size_t step = 0; step < views_.size(); ++step) {
    if (!QWidget::focusNextPrevChild(next)) return false;
    const QWidget* now = focusWidget();
    if (now != nullptr && inside_->rect().contains(now->geometry().center())) return true;
  }
  return false;
}

void Form1View::closeEvent(QCloseEvent* event) {
  form_.FileExit_Click();
  event->accept();
}

namespace {

void ShowUntilHidden(Form1& form, Form1View& view) {
  QEventLoop untilHidden;
  const ModelLink hideLink(form.OnHide, [&] {
    view.hide();
    untilHidden.quit();
  });
  view.show();
  untilHidden.exec();
  form.Form_Unload();
}

}  // namespace

bool ShowUntilHidden(Form1& form) {
  Form1View view(form);
  if (!form.Form_Load()) return false;
  ShowUntilHidden(form, view);
  return true;
}

void ShowMainWindow(KeploMod& mod, Win32Ser& line, const std::function<std::string()>& describeLine,
                    std::function<void(const std::string&)>& onLineMessage, QWidget* parent) {
  QtBoxes boxes;
  Form1 form(mod, line, boxes);
  form.DescribeLine = describeLine;
  Form1View view(form);
  if (!form.Form_Load()) return;
  view.setWindowModality(Qt::ApplicationModal);
  if (parent != nullptr && parent->window()->windowHandle() != nullptr) {
    view.winId();  // creates the window handle
    view.windowHandle()->setTransientParent(parent->window()->windowHandle());
  }
  onLineMessage = [&form](const std::string& text) { form.Note.SetText(text); };
  const auto reset = [](auto* function) { *function = nullptr; };
  const std::unique_ptr<std::function<void(const std::string&)>, decltype(reset)> whileOpen(&onLineMessage);
  ShowUntilHidden(form, view);
}

}  // namespace keplo::qt
