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

class ProtocolFlow;

/// The dialog for creating a protocol or editing its parameters. It is used once, changes the configuration
/// text directly, and replaces the main window while it is open.
class NewProtocol : public ui::Window {
 public:
  /// @param recorded the recorded key press that a new protocol may be based on
  NewProtocol(ProtocolFlow& flow, KeploMod& mod, UndoHistory& undo, Dialogue& dialogue,
              RecordedSignal recorded);

  /// Fills the dialog according to ProtocolFormMode or, if that fails, closes it with a message.
  void Form_Load();
  void GProtoIn_Click();
  /// Saves the protocol if all checks pass and the user confirms; otherwise the dialog stays open.
  void CreateButton_Click();
  void CancelButton_Click();

  ui::TextBox CProtIn, ProtDesc;
  ui::DropDownList GProtoIn;
  ui::TextBox SendPlsIn, RepeatIn, GRepeatIn, BitGIn, Bit0In, Bit1In;
  ui::Button CreateButton, CancelButton;

 private:
  bool IsNew() const;
  void FillFromRecording();
  bool FillFromSection();
  void Refuse();
  void TrimFields();
  ProtocolDraft Fields() const;
  void StoreParams(const ProtocolDraft& draft);
  SectionChange Plan(const ProtocolDraft& draft);
  bool Confirmed(const std::string& block);
  bool IsOpen() const;
  bool Save(const ProtocolDraft& draft, const Splice& change);
  bool RelistProtocols();

  ProtocolFlow& flow_;
  KeploMod& mod_;
  UndoHistory& undo_;
  Dialogue& dialogue_;
  RecordedSignal recorded_;
  std::int16_t SavedProtocolIndex = 0;
};

/// A control of the dialog and its texts.
struct NewProtocolRow {
  std::string_view Name;
  std::variant<ui::TextBox NewProtocol::*, ui::DropDownList NewProtocol::*, ui::Button NewProtocol::*> Model;
  std::string_view Caption;  // of a button, or of the label of a field
  char AccessKey;
  std::string_view Tip;
};

/// The controls in layout and tab order; the buttons come last.
std::span<const NewProtocolRow> NewProtocolControls();

}  // namespace keplo
