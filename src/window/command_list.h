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

/// The user's hold on protocols and commands: what is selected, what is stored and what is deleted.
class CommandList {
 public:
  struct Controls {
    ui::DropDownList& Protocol;
    ui::DropDownList& SendCmd;
    ReadingFields Fields;
  };

  CommandList(KeploMod& mod, const Controls& controls, Validation& validation, UndoPlace& undo,
              Dialogue& dialogue)
      : mod_(mod), controls_(controls), validation_(validation), undo_(undo), dialogue_(dialogue) {}

  /// Fills the list of protocols; none is selected then.
  void ListProtocols();
  /// Fills both lists again. What is selected and what has been typed or recorded stays if it is still there.
  void Refill();
  void TakeProtocol();
  void TakeCommand();
  /// Fills the list of protocols again and selects one of them.
  void ShowProtocol(const std::string& name);
  /// Selects a protocol and takes it even if it is selected already.
  void MakeProtocolCurrent(int index);
  /// Makes the selected protocol the current one again with its parameters and commands; a recorded code that
  /// is to be stored yet stays on screen.
  void TakeProtocolAgain();
  /// Stores the code on screen as a new command of the current protocol.
  void Save();
  void Delete();
  /// Takes the last change of commands or protocols back.
  void TakeBack();

 private:
  void RefillCommands();
  std::vector<std::string> ProtocolNames() const;
  std::vector<std::string> CommandNames() const;
  LearnResult CheckNewCommand(std::string& code) const;
  bool RecordedSelected() const;
  void ColourLists(ui::Colour colour);
  void ShowRecorded();
  bool KeepProtocolIndex();
  bool LoadParams();
  /// Loads how the current protocol sends codes that its other keys do not tell all of.
  void LoadWays();
  void ReloadCommands();
  std::optional<std::string> AskName();
  void ShowSaved(const std::string& name);

  KeploMod& mod_;
  Controls controls_;
  Validation& validation_;
  UndoPlace& undo_;
  Dialogue& dialogue_;
  std::string shownCode_;  // of the command that was selected last
};

}  // namespace keplo
