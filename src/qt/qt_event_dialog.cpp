#include "qt/qt_event_dialog.h"

#include <QApplication>

#include "qt/event_dialog_view.h"

namespace keplo::qt {

void QtEventDialog::ShowModal(frmEvent& dialog) {
  EventDialogView view(dialog, QApplication::activeWindow());
  view.exec();
}

}  // namespace keplo::qt
