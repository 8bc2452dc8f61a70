#include "qt/status_panel_view.h"

#include <QLabel>
#include <algorithm>
#include <array>

#include "qt/label_view.h"
#include "qt/text.h"

namespace keplo::qt {

namespace {

// Design sizes, twips.
constexpr int kLeft = 120, kTop = 240, kWidth = 4695, kHeight = 1695;
constexpr int kPictureSide = 48 * 15;

constexpr std::array kValueNames = {"CtlComPort", "CtlPortStatus", "RcvActivated", "VexilAvailable",
                                    "InterfaceType"};
// Reserves space for the widest text, so that nothing moves when the receiver changes.
constexpr QLatin1StringView kWidestValue("DCDStandard / DTR");

}  // namespace

StatusPanelView::StatusPanelView(StatusPanel& panel, QWidget* parent)
    : QGroupBox(ShownCaption(StatusPanel::kHeading), parent),
      picture_(new Ornament(this)),
      grid_(new QGridLayout(this)) {
  setObjectName(QStringLiteral("Frame2"));
  picture_->setObjectName(QStringLiteral("Picture1"));
  grid_->setContentsMargins(8, 2, 8, 4);
  grid_->setHorizontalSpacing(8);
  grid_->setVerticalSpacing(2);
  grid_->setColumnStretch(2, 1);
  const std::array values = panel.Values();
  for (std::size_t row = 0; row < values.size(); ++row) {
    auto* label = new QLabel(ShownText(StatusPanel::kRowLabels.at(row)), this);
    auto* value = new LabelView(*values.at(row), StatusPanel::kRowLabels.at(row), this);
    value->setObjectName(QLatin1String(kValueNames.at(row)));
    grid_->addWidget(label, static_cast<int>(row), 1);
    grid_->addWidget(value, static_cast<int>(row), 2);
  }
  grid_->addWidget(picture_, 0, 0, static_cast<int>(values.size()), 1, Qt::AlignCenter);
}

double StatusPanelView::PixelsPerTwip() {
  const auto* anyValue = findChild<QLabel*>(QLatin1String(kValueNames.front()));
  const int aroundText =
      anyValue->sizeHint().width() - anyValue->fontMetrics().horizontalAdvance(anyValue->text());
  grid_->setColumnMinimumWidth(2, anyValue->fontMetrics().horizontalAdvance(kWidestValue) + aroundText);
  // The picture grows with the scale, everything else with the font.
  const QSize least = minimumSizeHint();
  const double across =
      static_cast<double>(least.width() - picture_->minimumWidth()) / (kWidth - kPictureSide);
  const double down = static_cast<double>(least.height()) / kHeight;
  return std::max(across, down);
}

void StatusPanelView::SetScale(const TwipScale& scale) {
  picture_->setFixedSize(scale.ToPixels(kPictureSide), scale.ToPixels(kPictureSide));
  setGeometry(scale.ToPixels(kLeft), scale.ToPixels(kTop), scale.ToPixels(kWidth), scale.ToPixels(kHeight));
}

}  // namespace keplo::qt
