#include "qt/recording_dialogs.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <array>
#include <filesystem>
#include <utility>

#include "formats/formats.h"
#include "formats/save_text.h"
#include "line/kept_capture.h"
#include "qt/text.h"

namespace keplo::qt {

namespace {

QString Picked(QFileDialog& dialog, const char* recordings) {
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setNameFilters({QStringLiteral("Recordings (%1)").arg(QString::fromLatin1(recordings)),
                         QStringLiteral("All files (*)")});
  return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

/// Index of the press that the user picks; none if he cancels.
std::optional<std::size_t> PickPress(QWidget* parent, std::size_t presses) {
  if (presses == 1) return 0;
  bool chosen = false;
  const int number = QInputDialog::getInt(
      parent, QStringLiteral("Open recording"),
      QStringLiteral("The file holds %1 key presses. Which one do you want to see?").arg(presses), 1, 1,
      static_cast<int>(presses), 1, &chosen);
  return chosen ? std::optional(static_cast<std::size_t>(number) - 1) : std::nullopt;
}

std::optional<OpenedRecording> Open(QWidget* parent, double sampleTime, Analysis readBy) {
  QFileDialog dialog(parent, QStringLiteral("Open recording"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  const QString path =
      Picked(dialog, "*.mode2 *.cap *.ir *.conf *.toml *.csv *.girr *.json *.jsonl *.yaml *.txt");
  if (path.isEmpty()) return std::nullopt;
  const Recording recording = LoadRecording(TypedText(path));
  const std::optional<std::size_t> press = PickPress(parent, recording.Presses.size());
  if (!press) return std::nullopt;
  std::string name = std::filesystem::path(recording.Path).filename().string();
  if (recording.Presses.size() > 1) name += ", press " + std::to_string(*press + 1);
  TimedCapture capture = CaptureToShow(recording.Presses[*press], sampleTime, readBy);
  std::string place = QFileInfo(path).canonicalFilePath().toStdString() + " " + std::to_string(*press);
  return OpenedRecording{name, std::move(place), std::move(capture.Bytes), capture.SampleTime};
}

void Save(QWidget* parent, const TimedCapture& capture) {
  QFileDialog dialog(parent, QStringLiteral("Save recording"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QStringLiteral("mode2"));
  const std::string path = TypedText(Picked(dialog, "*.mode2 *.cap"));
  if (path.empty()) return;
  SaveText(path, FormatToWrite(path).Write(std::array{PulsesOfCapture(capture)}),
           "Save the recording under another name or in another folder.");
}

}  // namespace

RecordingFiles PickRecordings(QWidget* parent) {
  return {[parent](double sampleTime, Analysis readBy) { return Open(parent, sampleTime, readBy); },
          [parent](const std::string& capture, double sampleTime) {
            Save(parent, {capture, sampleTime});
          }};
}

}  // namespace keplo::qt
