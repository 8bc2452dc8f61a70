#include "qt/recording_files.h"

#include <QFileDialog>
#include <QInputDialog>
#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>

#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "formats/formats.h"
#include "line/press_capture.h"
#include "qt/text.h"
#include "signal/recorded_press.h"
#include "signal/sample_bits.h"

namespace keplo::qt {

namespace {

const char* const kRecordings = "Recordings (*.mode2 *.cap);;All files (*)";

/// Lengths of the marks and spaces of a capture, from its first mark on.
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

/// Whether a press is a capture that was kept: it is as a line has shaped it, and stays so.
bool IsKeptCapture(const Press& press) {
  const auto* train = std::get_if<PulseTrain>(&press);
  return train != nullptr && std::all_of(train->begin(), train->end(),
                                         [](int length) { return length % kNominalSampleTime == 0; });
}

QString Picked(QFileDialog& dialog) {
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setNameFilter(QString::fromLatin1(kRecordings));
  return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

/// Which press of a recording; none after Cancel.
std::optional<std::size_t> PickPress(QWidget* parent, std::size_t presses) {
  if (presses == 1) return 0;
  bool chosen = false;
  const int number = QInputDialog::getInt(
      parent, QStringLiteral("Open recording"),
      QStringLiteral("The file holds %1 key presses. Which one do you want to see?").arg(presses), 1, 1,
      static_cast<int>(presses), 1, &chosen);
  return chosen ? std::optional(static_cast<std::size_t>(number) - 1) : std::nullopt;
}

std::optional<OpenedRecording> Open(QWidget* parent) {
  QFileDialog dialog(parent, QStringLiteral("Open recording"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  const QString path = Picked(dialog);
  if (path.isEmpty()) return std::nullopt;
  const Recording recording = LoadRecording(TypedText(path));
  const std::optional<std::size_t> press = PickPress(parent, recording.Presses.size());
  if (!press) return std::nullopt;
  LineOptions asRecorded;
  asRecorded.HoldMs = 0;
  asRecorded.Shape = !IsKeptCapture(recording.Presses[*press]);
  std::string name = std::filesystem::path(recording.Path).filename().string();
  if (recording.Presses.size() > 1) name += ", press " + std::to_string(*press + 1);
  return OpenedRecording{name, CaptureOfPress(recording.Presses[*press], kRecordCaptureBytes, asRecorded)};
}

void Save(QWidget* parent, const std::string& capture) {
  QFileDialog dialog(parent, QStringLiteral("Save recording"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QStringLiteral("mode2"));
  const std::string path = TypedText(Picked(dialog));
  if (path.empty()) return;
  try {
    PosixFileSystem files;
    ReplaceFile(files, path, FormatToWrite(path).Write(std::array{PulsesOf(capture)}))->Flush();
  } catch (const Failure& failure) {
    throw Failure(failure.Number(), path + " cannot be written: " + std::strerror(failure.Number()) +
                                        ". Save the recording under another name or in another folder.");
  }
}

}  // namespace

RecordingFiles PickRecordings(QWidget* parent) {
  return {[parent] { return Open(parent); }, [parent](const std::string& capture) { Save(parent, capture); }};
}

}  // namespace keplo::qt
