#pragma once

#include <functional>
#include <optional>
#include <string>

#include "signal/analysis_choice.h"
#include "signal/sample_bits.h"

namespace keplo {

/// A recording that was read from a file.
struct OpenedRecording {
  std::string Name;                        // of the file, and which of its presses, for a person
  std::string Place;                       // where it was read from: the same for the same press only
  std::string Capture;                     // as the line would have filled it
  double SampleTime = kNominalSampleTime;  // of the capture, microseconds
};

/// How a view asks the user for a file and reads or writes it; none where nothing can be asked.
struct RecordingFiles {
  /// @param sampleTime of the captures of this machine, microseconds
  /// @param readBy what the capture is to be read by
  /// @return none if the user picks no file
  /// @throws Failure for a file that cannot be read
  std::function<std::optional<OpenedRecording>(double sampleTime, Analysis readBy)> Open;
  /// @param sampleTime of the capture, microseconds
  /// @throws Failure for a file that cannot be written
  std::function<void(const std::string& capture, double sampleTime)> Save;
};

}  // namespace keplo
