#pragma once

#include <cstdint>
#include <string_view>

#include "config/cfg_store.h"
#include "config/settings.h"
#include "events/cls_keplo_event.h"
#include "ui/check_box.h"
#include "ui/drop_down_list.h"
#include "ui/label.h"
#include "ui/text_box.h"
#include "ui/window.h"

namespace keplo {

class frmEvent;

/// Shows the event dialog modally and returns when OK or Cancel has hidden it. Without a display it returns
/// at once, which counts as Cancel.
class EventDialogShower {
 public:
  virtual ~EventDialogShower() = default;
  virtual void ShowModal(frmEvent& dialog) = 0;
};

/// Splits a command reference at its first '&' into the current protocol and command. Both become empty
/// unless at least four characters follow the '&'.
void SplitCommandRef(std::string_view reference, CfgStore& store);

/// The dialog for adding or editing an event. It is used once and stores nothing itself.
class frmEvent : public ui::Window {
 public:
  /// The texts of the dialog, in layout order.
  static constexpr std::string_view kDetailsFrame = "Event Details";
  static constexpr std::string_view kCommandFrame = "Infrared Command";
  static constexpr std::string_view kEventNameLabel = "Event name:";
  static constexpr std::string_view kEventNameTip = "Enter a friendly name for the event";
  static constexpr std::string_view kEventDescriptionLabel = "Event Description:";
  static constexpr std::string_view kEventDescriptionTip = "Enter a short description of the event";
  static constexpr std::string_view kEnableCaption = "Enabled";
  static constexpr std::string_view kProtocolLabel = "Protocol";
  static constexpr std::string_view kSendCmdLabel = "Command";
  static constexpr std::string_view kVexilLabel = "Vexil Zone";
  static constexpr std::string_view kZoneTip =
      "Select Vexil zone (1-8) or 0 if you want to disable Vexil for this Event";

  static constexpr std::string_view kPickHint = "Pick a protocol and a command first.";

  frmEvent(CfgStore& store, const Settings& settings);

  /// Shows the dialog for an event, and updates the event if the user accepts.
  /// @param vMode 0 to add, any other value to edit
  /// @return true if the user accepted
  bool ShowMe(std::int32_t vMode, clsKeploEvent& myEvent, EventDialogShower& shower);

  /// Shows a hint and keeps the dialog open while no protocol or command is selected.
  void OKButton_Click();
  void CancelButton_Click();

  ui::TextBox EventName, EventDescription;
  ui::CheckBox EvtEnable;
  ui::DropDownList Protocol, SendCmd, ZoneListBox;
  ui::Label Hint;           // why OK was refused; empty until then
  bool ZoneVisible = true;  // ZoneListBox and its label

 private:
  void Form_Load();
  void Protocol_Click();
  void SendCmd_Click();
  void StartAdding();
  void StartEditing(const clsKeploEvent& event);

  CfgStore& store_;
  const Settings& settings_;
  bool accepted_ = false;
};

}  // namespace keplo
