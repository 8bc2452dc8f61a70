#include "window/recording_flow.h"

#include <optional>

#include "signal/sample_time.h"

namespace keplo {

void RecordingFlow::Open() {
  std::optional<OpenedRecording> recording;
  if (!files_.Open || !dialogue_.RunAndReport([&] {
        recording = files_.Open(SampleTimeOf(settings_.ProcDelay), settings_.Analysis);
      }) ||
      !recording)
    return;
  const std::string remark = record_.Explain(*recording);
  note_.SetText("Recording " + recording->Name + (remark.empty() ? "" : ": " + remark));
}

void RecordingFlow::Save() {
  if (signal_.RawCapture.find_first_not_of('\0') == std::string::npos) {
    dialogue_.Tell("There is no recording to save. Press Record and a key of the remote first.");
    return;
  }
  if (files_.Save) dialogue_.RunAndReport([&] { files_.Save(signal_.RawCapture, signal_.SampleTime); });
}

}  // namespace keplo
