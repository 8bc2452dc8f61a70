#pragma once

#include <QWidget>

#include "window/recording_files.h"

namespace keplo::qt {

/// Dialogs for opening a recording, or one of its presses if there are several, and for saving one.
/// @param parent window below the dialogs; must outlive the result
RecordingFiles PickRecordings(QWidget* parent);

}  // namespace keplo::qt
