#pragma once

#include <functional>
#include <optional>
#include <string>

#include "signal/analysis_choice.h"
#include "signal/sample_bits.h"

namespace keplo {

/// A recording that was read from a file.
struct OpenedRecording {
  std::string Name;                        // of the file, and which of its presses, for the user
  std::string Place;                       // identifies the press
  std::string Capture;                     // as the line would have captured it
  double SampleTime = kNominalSampleTime;  // of the capture, microseconds
};

/// How a view lets the user pick a file, and reads or writes it. The functions are empty if there is no view.
struct RecordingFiles {
  /// @param sampleTime of the captures of this machine, microseconds
  /// @param readBy the analysis that will read the capture
  /// @return none if the user picks no file
  /// @throws Failure if the file cannot be read
  std::function<std::optional<OpenedRecording>(double sampleTime, Analysis readBy)> Open;
  /// @param sampleTime of the capture, microseconds
  /// @throws Failure if the file cannot be written
  std::function<void(const std::string& capture, double sampleTime)> Save;
};

}  // namespace keplo
