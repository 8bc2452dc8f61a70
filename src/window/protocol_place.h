#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "keplo_mod.h"
#include "ui/drop_down_list.h"
#include "ui/timer.h"
#include "window/command_list.h"
#include "window/dialogue.h"
#include "window/reading_fields.h"

namespace keplo {

class NewProtocol;

/// The protocols of the file and the place of the dialog that sets one up: as long as the dialog is there, it
/// stands in the place of the main window, which is hidden and cannot be used.
class ProtocolPlace {
 public:
  struct Controls {
    ui::DropDownList& Protocol;
    ui::Timer& SendLoop;
    ReadingFields Fields;
  };

  /// @param onDialog runs when the dialog has come or gone; may be empty, and may change
  ProtocolPlace(KeploMod& mod, const Controls& controls, CommandList& commands, UndoPlace& undo,
                Dialogue& dialogue, const std::function<void()>& onDialog);
  ~ProtocolPlace();
  ProtocolPlace(const ProtocolPlace&) = delete;
  ProtocolPlace& operator=(const ProtocolPlace&) = delete;

  void StartNew();
  void StartEdit();
  /// Deletes the current protocol.
  void Delete();

  /// Null while there is none.
  NewProtocol* Dialog() const { return dialog_.get(); }
  /// Ends the dialog and brings the main window back. The object lives on until the next one is loaded, so a
  /// handler of its own may end it.
  void Unload();

  // What the dialog does to the main window.

  int SelectedProtocol() const { return controls_.Protocol.ListIndex(); }
  void SetProtocols(std::vector<std::string> names) { controls_.Protocol.SetEntries(std::move(names)); }
  void MakeProtocolCurrent(int index) { commands_.MakeProtocolCurrent(index); }
  void TakeProtocolAgain() { commands_.TakeProtocolAgain(); }
  /// @param pulse base time, microseconds
  void ShowPulse(std::string_view pulse) { controls_.Fields.SendPulse.SetText(pulse); }

 private:
  void Load(std::int16_t mode);

  KeploMod& mod_;
  Controls controls_;
  CommandList& commands_;
  UndoPlace& undo_;
  Dialogue& dialogue_;
  const std::function<void()>& onDialog_;
  std::unique_ptr<NewProtocol> dialog_, unloadedDialog_;
  bool sendsAgain_ = false;  // once the dialog is gone
};

}  // namespace keplo
