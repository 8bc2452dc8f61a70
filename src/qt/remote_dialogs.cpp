#include "qt/remote_dialogs.h"

#include <QFileDialog>

#include "formats/remote.h"
#include "formats/save_text.h"
#include "qt/import_view.h"
#include "qt/text.h"

namespace keplo::qt {

namespace {

std::optional<OpenedRemotes> OpenRemotes(QWidget* parent) {
  QFileDialog dialog(parent, QStringLiteral("Import"));
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setFileMode(QFileDialog::ExistingFiles);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  OpenedRemotes opened;
  for (const QString& picked : dialog.selectedFiles()) {
    const std::string path = TypedText(picked);
    try {
      RemoteFile file = LoadRemotes(path);
      for (const Complaint& complaint : file.Complaints) opened.Complaints.push_back(complaint.Message());
      opened.Files.push_back({path, std::move(file.Remotes)});
    } catch (const FormatError& unreadable) {
      opened.Complaints.emplace_back(unreadable.what());
    }
  }
  if (opened.Files.empty() && !opened.Complaints.empty()) throw FormatError(opened.Complaints.front());
  return opened;
}

/// Sets the formats as the filters of a dialog.
/// @return their names, in the order of the filters
std::vector<std::string_view> OfferFormats(QFileDialog& dialog) {
  std::vector<std::string_view> names;
  QStringList filters;
  for (const RemoteFormat& format : RemoteFormats()) {
    if (format.Write == nullptr) continue;
    names.push_back(format.Name);
    filters << ShownText(std::string(format.Name) + ": " + std::string(format.Description) + " (*)");
  }
  dialog.setNameFilters(filters);
  return names;
}

std::vector<std::string> SaveRemotes(QWidget* parent, const std::vector<Remote>& remotes) {
  QFileDialog dialog(parent, QStringLiteral("Export"));
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setLabelText(QFileDialog::FileType, QStringLiteral("Format:"));
  const std::vector<std::string_view> names = OfferFormats(dialog);
  if (dialog.exec() != QDialog::Accepted) return {};
  const std::string path = TypedText(dialog.selectedFiles().value(0));
  const auto format = static_cast<std::size_t>(dialog.nameFilters().indexOf(dialog.selectedNameFilter()));
  std::vector<Complaint> complaints;
  const std::string text = WriteRemotes(names.at(format), remotes, complaints);
  SaveText(path, text, "Export under another name or into another folder.");
  std::vector<std::string> lost;
  lost.reserve(complaints.size());
  for (const Complaint& complaint : complaints) lost.push_back(complaint.Message());
  return lost;
}

}  // namespace

RemoteFiles PickRemotes(QWidget* parent) {
  return {[parent] { return OpenRemotes(parent); },
          [parent](ImportDialog& dialog) { ImportView(dialog, parent).exec(); },
          [parent](const std::vector<Remote>& remotes) { return SaveRemotes(parent, remotes); }};
}

}  // namespace keplo::qt
