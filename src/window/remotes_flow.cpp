#include "window/remotes_flow.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "failure.h"
#include "remotes/stored_remote.h"
#include "window/file_watch.h"
#include "window/import_dialog.h"
#include "window/recorded_signal.h"

namespace keplo {

namespace {

constexpr std::size_t kMostLines = 10;  // in a box; more would not fit on a small screen

}  // namespace

void RemotesFlow::ReportAll(const std::vector<std::string>& texts, const std::string& title) {
  if (texts.empty()) return;
  std::string lines;
  for (std::size_t i = 0; i < std::min(texts.size(), kMostLines); ++i) lines += texts[i] + "\n";
  if (texts.size() > kMostLines) lines += "and " + std::to_string(texts.size() - kMostLines) + " more\n";
  lines.pop_back();
  dialogue_.Tell(title, lines);
}

void RemotesFlow::Import() {
  std::optional<OpenedRemotes> opened;
  if (!files_.Open || !files_.Pick || !dialogue_.RunAndReport([&] { opened = files_.Open(); }) || !opened)
    return;
  ReportAll(opened->Complaints, "Some of it cannot be read.");
  ReloadIfChanged(store_);
  ImportDialog dialog(store_, std::move(opened->Files));
  if (dialog.Rows().empty()) {
    dialogue_.Tell("There are no keys in it.");
    return;
  }
  files_.Pick(dialog);
  if (dialog.Accepted()) Store(dialog);
}

void RemotesFlow::Store(const ImportDialog& dialog) {
  ReloadIfChanged(store_);
  const UndoStep step(undo_);
  std::string section;
  bool isStored = false;  // by another program, while the user was choosing keys
  const bool changed = dialogue_.ChangeAndReport([&] {
    ImportPlan plan = dialog.PlanFor(store_.CfgText);
    isStored = plan.Sections.empty();
    if (isStored) return;
    section = plan.Sections.front();
    StoreImport(store_, std::move(plan));
  });
  if (changed) commands_.ShowProtocol(section);
  if (isStored) dialogue_.Tell("All keys that were chosen are stored already.");
}

void RemotesFlow::Export() {
  if (IsRecorded(store_.CurProtocol)) {
    dialogue_.Tell("Recorded is a virtual protocol used to test new commands before save.");
    return;
  }
  std::vector<std::string> lost;
  const bool done = dialogue_.RunAndReport([&] {
    const Remote remote = RemoteOfSection(store_.CfgText, store_.CurProtocol, {}, &store_.Raw);
    if (remote.Keys.empty())
      throw Failure(0, "The protocol " + store_.CurProtocol + " has no commands to export.");
    if (files_.Save) lost = files_.Save({remote});
  });
  if (done) ReportAll(lost, "The format cannot say all of it.");
}

}  // namespace keplo
