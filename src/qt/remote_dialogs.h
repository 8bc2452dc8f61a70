#pragma once

#include <QWidget>

#include "window/remote_files.h"

namespace keplo::qt {

/// Dialogs for importing keys from files of remotes, and for exporting remotes.
/// @param parent window below the dialogs; must outlive the result
RemoteFiles PickRemotes(QWidget* parent);

}  // namespace keplo::qt
