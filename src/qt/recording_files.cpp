#include "qt/recording_files.h"

#include <QFileDialog>
#include <QSaveFile>
#include <algorithm>

#include "failure.h"
#include "formats/pulse_text.h"
#include "formats/recording.h"
#include "line/press_capture.h"
#include "qt/text.h"
#include "signal/recorded_press.h"
#include "signal/sample_bits.h"

namespace keplo::qt {

namespace {

constexpr int kPathFileError = 75;  // of error records
const QString kRecordings = QStringLiteral("Recordings (*.mode2 *.cap);;All files (*)");

PulseTrain PulsesOf(const std::string& capture) {
  const std::string samples = SamplesToBits(capture);
  PulseTrain pulses;
  for (std::size_t start = samples.find('1'); start < samples.size();) {
    const std::size_t end = std::min(samples.find_first_not_of(samples[start], start), samples.size());
    pulses.push_back(static_cast<int>(end - start) * kNominalSampleTime);
    start = end;
  }
  return pulses;
}

}  // namespace

std::optional<std::string> ReadPickedRecording(QWidget* parent) {
  const QString path = QFileDialog::getOpenFileName(parent, QStringLiteral("Open recording"), {}, kRecordings,
                                                    nullptr, QFileDialog::DontUseNativeDialog);
  if (path.isEmpty()) return std::nullopt;
  const Recording recording = LoadRecording(TypedText(path));
  LineOptions asRecorded;
  asRecorded.HoldMs = 0;
  return CaptureOfPress(recording.Presses.front(), kRecordCaptureBytes, asRecorded);
}

void WritePickedRecording(QWidget* parent, const std::string& capture) {
  QFileDialog chooser(parent, QStringLiteral("Save recording"), {}, kRecordings);
  chooser.setOption(QFileDialog::DontUseNativeDialog);
  chooser.setAcceptMode(QFileDialog::AcceptSave);
  chooser.setDefaultSuffix(QStringLiteral("mode2"));
  if (chooser.exec() != QDialog::Accepted) return;
  const QString path = chooser.selectedFiles().first();
  const std::string text = Mode2Text(PulsesOf(capture));
  QSaveFile file(path);
  const bool written = file.open(QIODevice::WriteOnly) &&
                       file.write(text.data(), static_cast<qint64>(text.size())) == std::ssize(text) &&
                       file.commit();
  if (!written) {
    throw Failure(kPathFileError, TypedText(path) + " was not written: " + TypedText(file.errorString()) +
                                      ". Save the recording under another name or in another folder.");
  }
}

}  // namespace keplo::qt
