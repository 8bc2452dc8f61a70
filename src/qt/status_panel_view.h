#pragma once

#include <QGridLayout>
#include <QGroupBox>

#include "qt/ornament.h"
#include "qt/twip_scale.h"
#include "shell/status_panel.h"

namespace keplo::qt {

/// The status panel: heading, picture, and five rows of a label and a boxed value.
class StatusPanelView : public QGroupBox {
 public:
  StatusPanelView(StatusPanel& panel, QWidget* parent);

  /// Pixels to a twip at which everything in the panel fits into its design size.
  double PixelsPerTwip();
  void SetScale(const TwipScale& scale);

 private:
  Ornament* picture_;
  QGridLayout* grid_;
};

}  // namespace keplo::qt
