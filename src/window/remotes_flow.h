#pragma once

#include <string>

#include "keplo_mod.h"
#include "window/command_list.h"
#include "window/dialogue.h"
#include "window/remote_files.h"
#include "window/undo_step.h"

namespace keplo {

/// Imports remotes from files, and exports the commands of a protocol to one.
class RemotesFlow {
 public:
  /// @param files may be set later
  RemotesFlow(CfgStore& store, const RemoteFiles& files, CommandList& commands, UndoHistory& undo,
              Dialogue& dialogue)
      : store_(store), files_(files), commands_(commands), undo_(undo), dialogue_(dialogue) {}

  void Import();
  /// Exports the current protocol.
  void Export();

 private:
  void Store(const ImportDialog& dialog);
  void ReportAll(const std::vector<std::string>& texts, const std::string& title);

  CfgStore& store_;
  const RemoteFiles& files_;
  CommandList& commands_;
  UndoHistory& undo_;
  Dialogue& dialogue_;
};

}  // namespace keplo
