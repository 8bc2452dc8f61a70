#pragma once

#include <optional>
#include <string>
#include <vector>

#include "config/learn.h"
#include "keplo_mod.h"
#include "signal/validation.h"
#include "ui/drop_down_list.h"
#include "window/dialogue.h"
#include "window/reading_fields.h"
#include "window/undo_step.h"

namespace keplo {

/// The lists of protocols and commands: selecting, storing and deleting.
class CommandList {
 public:
  struct Controls {
    ui::DropDownList& Protocol;
    ui::DropDownList& SendCmd;
    ReadingFields Fields;
  };

  CommandList(KeploMod& mod, const Controls& controls, Validation& validation, UndoHistory& undo,
              Dialogue& dialogue)
      : mod_(mod), controls_(controls), validation_(validation), undo_(undo), dialogue_(dialogue) {}

  /// Fills the list of protocols, without a selection.
  void ListProtocols();
  /// Fills both lists again. Keeps selections that still exist, and whatever has been typed or recorded.
  void Refill();
  /// Makes the selected protocol the current one, and loads its parameters and commands.
  void ApplyProtocol();
  /// Shows the code of the selected command.
  void ApplyCommand();
  /// Fills the list of protocols again and selects one of them.
  void ShowProtocol(const std::string& name);
  /// Selects a protocol and applies it, even if it was already selected.
  void MakeProtocolCurrent(int index);
  /// Applies the selected protocol again; a recorded code that has not been stored yet stays on screen.
  void ReapplyProtocol();
  /// Stores the code on screen as a new command of the current protocol.
  void Save();
  void Delete();
  /// Undoes the last change of commands or protocols.
  void Undo();

 private:
  void RefillCommands();
  std::vector<std::string> ProtocolNames() const;
  std::vector<std::string> CommandNames() const;
  LearnResult CheckNewCommand(std::string& code) const;
  bool RecordedSelected() const;
  void ColourLists(ui::Colour colour);
  void ShowRecorded();
  bool StoreProtocolIndex();
  bool LoadParams();
  /// Loads SENDAS= of the current protocol, as far as the chosen analysis supports it.
  void LoadSendAs();
  void ReloadCommands();
  std::optional<std::string> AskName();
  void ShowSaved(const std::string& name);

  KeploMod& mod_;
  Controls controls_;
  Validation& validation_;
  UndoHistory& undo_;
  Dialogue& dialogue_;
  std::string shownCode_;  // the code of the command selected last
};

}  // namespace keplo
