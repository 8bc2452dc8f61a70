#pragma once

#include <QWidget>

#include "window/remote_files.h"

namespace keplo::qt {

/// Lets the user pick files of remotes and keys of them; and name a file and its format for others.
/// @param parent the dialogs stand over it, and it outlives what is returned
RemoteFiles PickRemotes(QWidget* parent);

}  // namespace keplo::qt
