#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "config/protocol_edit.h"
#include "keplo_mod.h"
#include "ui/button.h"
#include "ui/drop_down_list.h"
#include "ui/text_box.h"
#include "ui/window.h"
#include "window/dialogue.h"
#include "window/recorded_signal.h"
#include "window/undo_step.h"

namespace keplo {

class ProtocolPlace;

/// The dialog in which the user sets up a new protocol or changes the parameters of one. It lives for one use
/// and works on the configuration text at once; while it is there, the main window is not.
class NewProtocol : public ui::Window {
 public:
  /// @param recorded what a protocol for the recorded key press is made of
  NewProtocol(ProtocolPlace& place, KeploMod& mod, UndoPlace& undo, Dialogue& dialogue,
              RecordedSignal recorded);

  /// Fills the dialog as ProtocolFormMode tells, or refuses and unloads it.
  void Form_Load();
  void GProtoIn_Click();
  /// Leaves the dialog open with all it holds unless everything passes and the user says yes.
  void CreateButton_Click();
  void CancelButton_Click();

  ui::TextBox CProtIn, ProtDesc;
  ui::DropDownList GProtoIn;
  ui::TextBox SendPlsIn, RepeatIn, GRepeatIn, BitGIn, Bit0In, Bit1In;
  ui::Button CreateButton, CancelButton;

 private:
  bool IsNew() const;
  void TakeRecording();
  bool TakeSection();
  void Refuse();
  void TrimFields();
  ProtocolDraft Fields() const;
  void KeepParams(const ProtocolDraft& draft);
  SectionChange Plan(const ProtocolDraft& draft);
  bool Agreed(const std::string& block);
  bool IsOpen() const;
  bool Saved(const ProtocolDraft& draft, const Splice& change);
  bool ListProtocolsAgain();

  ProtocolPlace& place_;
  KeploMod& mod_;
  UndoPlace& undo_;
  Dialogue& dialogue_;
  RecordedSignal recorded_;
  std::int16_t SavedProtocolIndex = 0;
};

/// One control of the dialog with the texts that it shows.
struct NewProtocolRow {
  std::string_view Name;
  std::variant<ui::TextBox NewProtocol::*, ui::DropDownList NewProtocol::*, ui::Button NewProtocol::*> Model;
  std::string_view Caption;  // of the label before a field; of a button its own
  char AccessKey;
  std::string_view Tip;
};

/// The controls in the order of the layout, which is the tab order too; the buttons come last.
std::span<const NewProtocolRow> NewProtocolControls();

}  // namespace keplo
