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

/// Creates, edits and deletes protocols. Owns the dialog, which replaces the main window while it is open.
class ProtocolFlow {
 public:
  struct Controls {
    ui::DropDownList& Protocol;
    ui::Timer& SendLoop;
    ReadingFields Fields;
  };

  /// @param onDialog runs when the dialog has been opened or closed; may be empty, and may be set later
  ProtocolFlow(KeploMod& mod, const Controls& controls, CommandList& commands, UndoHistory& undo,
               Dialogue& dialogue, const std::function<void()>& onDialog);
  ~ProtocolFlow();
  ProtocolFlow(const ProtocolFlow&) = delete;
  ProtocolFlow& operator=(const ProtocolFlow&) = delete;

  void StartNew();
  void StartEdit();
  /// Deletes the current protocol.
  void Delete();

  /// Null if the dialog is not open.
  NewProtocol* Dialog() const { return dialog_.get(); }
  /// Closes the dialog. The object lives until the next one is opened, so that one of its handlers may call
  /// this.
  void Close();

  // Used by the dialog to update the main window.

  int SelectedProtocol() const { return controls_.Protocol.ListIndex(); }
  void SetProtocols(std::vector<std::string> names) { controls_.Protocol.SetEntries(std::move(names)); }
  void MakeProtocolCurrent(int index) { commands_.MakeProtocolCurrent(index); }
  void ReapplyProtocol() { commands_.ReapplyProtocol(); }
  /// @param pulse base time, microseconds
  void ShowPulse(std::string_view pulse) { controls_.Fields.SendPulse.SetText(pulse); }

 private:
  void OpenDialog(std::int16_t mode);

  KeploMod& mod_;
  Controls controls_;
  CommandList& commands_;
  UndoHistory& undo_;
  Dialogue& dialogue_;
  const std::function<void()>& onDialog_;
  std::unique_ptr<NewProtocol> dialog_, closedDialog_;
  bool resumesLoop_ = false;  // whether SendLoop was enabled when the dialog was opened
};

}  // namespace keplo
