#pragma once

#include <functional>
#include <optional>
#include <string>

namespace keplo {

/// A recording that was read from a file.
struct OpenedRecording {
  std::string Name;     // of the file, and which of its presses, for a person
  std::string Capture;  // as the line would have filled it
};

/// How a view asks the user for a file and reads or writes it; none where nothing can be asked.
struct RecordingFiles {
  /// @return none if the user picks no file
  /// @throws Failure for a file that cannot be read
  std::function<std::optional<OpenedRecording>()> Open;
  /// @throws Failure for a file that cannot be written
  std::function<void(const std::string& capture)> Save;
};

}  // namespace keplo
