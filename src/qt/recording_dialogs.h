#pragma once

#include <QWidget>

#include "window/recording_files.h"

namespace keplo::qt {

/// Lets the user pick a recording, and one of its presses if it holds several; and name a file for another.
/// @param parent the dialogs stand over it, and it outlives what is returned
RecordingFiles PickRecordings(QWidget* parent);

}  // namespace keplo::qt
