#pragma once

#include <QWidget>
#include <optional>
#include <string>

namespace keplo::qt {

/// Lets the user pick a recording and reads its first press, as a capture of the main window.
/// @return none if the user picks no file
/// @throws Failure for a file that cannot be read
std::optional<std::string> ReadPickedRecording(QWidget* parent);

/// Lets the user name a file and writes a capture to it as a recording in mode2.
/// @throws Failure if it cannot be written; a file that was there stays as it is then
void WritePickedRecording(QWidget* parent, const std::string& capture);

}  // namespace keplo::qt
