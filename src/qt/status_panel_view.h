#pragma once

#include <QGridLayout>
#include <QGroupBox>

#include "qt/ornament.h"
#include "qt/twip_scale.h"
#include "shell/status_panel.h"

namespace keplo::qt {

/// The view of the status panel: a heading, a picture, and five labelled values.
class StatusPanelView : public QGroupBox {
 public:
  StatusPanelView(StatusPanel& panel, QWidget* parent);

  /// The smallest scale, in pixels per twip, at which everything fits the panel's design size.
  double PixelsPerTwip();
  void SetScale(const TwipScale& scale);

 private:
  Ornament* picture_;
  QGridLayout* grid_;
};

}  // namespace keplo::qt
