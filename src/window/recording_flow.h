#pragma once

#include "config/settings.h"
#include "signal/monitored_press.h"
#include "ui/label.h"
#include "window/dialogue.h"
#include "window/record_flow.h"
#include "window/recording_files.h"

namespace keplo {

/// Opens recordings from files, and saves the one on screen.
class RecordingFlow {
 public:
  /// @param files may be set later
  RecordingFlow(const SignalState& signal, const Settings& settings, const RecordingFiles& files,
                RecordFlow& record, ui::Label& note, Dialogue& dialogue)
      : signal_(signal),
        settings_(settings),
        files_(files),
        record_(record),
        note_(note),
        dialogue_(dialogue) {}

  void Open();
  void Save();

 private:
  const SignalState& signal_;
  const Settings& settings_;
  const RecordingFiles& files_;
  RecordFlow& record_;
  ui::Label& note_;
  Dialogue& dialogue_;
};

}  // namespace keplo
