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

/// Shows the event dialog modally: comes back when OK or Cancel has hidden it. Without a display it comes
/// back at once, which counts as Cancel.
class EventDialogShower {
 public:
  virtual ~EventDialogShower() = default;
  virtual void ShowModal(frmEvent& dialog) = 0;
};

/// Splits a command reference at its first '&' into the current protocol and command. At least four
/// characters must follow it; otherwise both names become empty.
void SplitCommandRef(std::string_view reference, CfgStore& store);

/// The dialog in which the user creates or changes an event. It lives for one use and stores nothing itself.
class frmEvent : public ui::Window {
 public:
  /// The texts of the dialog, in the order of its layout.
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

  /// Shows the dialog for an event and fills it in if the user accepts.
  /// @param vMode 0 to add, any other value to edit
  /// @return true if the user accepted
  bool ShowMe(std::int32_t vMode, clsKeploEvent& myEvent, EventDialogShower& shower);

  /// Refused, with a hint, while no protocol or no command is selected.
  void OKButton_Click();
  void CancelButton_Click();

  ui::TextBox EventName, EventDescription;
  ui::CheckBox EvtEnable;
  ui::DropDownList Protocol, SendCmd, ZoneListBox;
  ui::Label Hint;           // why OK was refused; empty until then
  bool ZoneVisible = true;  // of ZoneListBox and its label

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
