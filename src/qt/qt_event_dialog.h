#pragma once

#include "shell/frm_event.h"

namespace keplo::qt {

/// Shows the event dialog over the active window until OK or Cancel hides it; Esc and the close button
/// cancel.
class QtEventDialog : public EventDialogShower {
 public:
  void ShowModal(frmEvent& dialog) override;
};

}  // namespace keplo::qt
