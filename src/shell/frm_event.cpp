#include "shell/frm_event.h"

#include <string>

#include "config/commands.h"
#include "config/protocols.h"

namespace keplo {

namespace {

constexpr int kLastZone = 8;
constexpr std::size_t kShortestCommand = 4;  // characters after the '&'

}  // namespace

void SplitCommandRef(std::string_view reference, CfgStore& store) {
  const std::size_t divider = reference.find('&');
  const bool splits =
      divider != std::string_view::npos && reference.size() - (divider + 1) >= kShortestCommand;
  store.CurProtocol = splits ? reference.substr(0, divider) : "";
  store.CurCommand = splits ? reference.substr(divider + 1) : "";
}

frmEvent::frmEvent(CfgStore& store, const Settings& settings) : store_(store), settings_(settings) {
  Protocol.OnClick = [this] { Protocol_Click(); };
  SendCmd.OnClick = [this] { SendCmd_Click(); };
}

bool frmEvent::ShowMe(std::int32_t vMode, clsKeploEvent& myEvent, EventDialogShower& shower) {
  if (vMode == 0) {
    StartAdding();
  } else {
    StartEditing(myEvent);
  }
  shower.ShowModal(*this);
  if (!accepted_) return false;

  myEvent.EventName = EventName.Text();
  myEvent.EventDescription = EventDescription.Text();
  myEvent.IRCommand = Protocol.Text() + "&" + SendCmd.Text();
  myEvent.Enabled = EvtEnable.Checked();
  // If the list does not have the stored zone, it has no selection, and the zone is kept.
  if (settings_.VexilMode > 0 && ZoneListBox.ListIndex() != ui::DropDownList::kNoSelection) {
    myEvent.Zone = static_cast<std::int16_t>(ZoneListBox.ListIndex());
  }
  return true;
}

void frmEvent::StartAdding() {
  SetTitle("Add New Event");
  Form_Load();
  ZoneListBox.Select(0);
  Protocol.Select(0);
  SendCmd.Select(0);
  EvtEnable.SetChecked(true);
}

void frmEvent::StartEditing(const clsKeploEvent& event) {
  SplitCommandRef(event.IRCommand, store_);
  Form_Load();
  // The selections made by Form_Load have proposed texts, which the stored ones replace.
  EventName.SetText(event.EventName);
  EventDescription.SetText(event.EventDescription);
  EvtEnable.SetChecked(event.Enabled);
  SetTitle("Edit Existing Event");
  ZoneListBox.Select(event.Zone);
}

void frmEvent::Form_Load() {
  for (const std::string& name : ListProtocols(store_.CfgText)) Protocol.Add(name);
  for (int zone = 0; zone <= kLastZone; ++zone) ZoneListBox.Add(std::to_string(zone));
  ZoneVisible = settings_.VexilMode != 0;

  if (store_.CurProtocol.empty()) {
    Protocol.Select(0);
    Protocol_Click();
    store_.CurProtocol = Protocol.Text();
  } else {
    Protocol.SelectText(std::string(store_.CurProtocol));
    SendCmd.SelectText(std::string(store_.CurCommand));
  }
}

void frmEvent::Protocol_Click() {
  const std::string protocol = Protocol.Text();
  SendCmd.Clear();
  for (const LearnedCommand& command : ListCommands(store_.CfgText, protocol))
    SendCmd.Add(Trimmed(command.Name));
  if (store_.CurCommand.empty()) {
    SendCmd.Select(0);
    store_.CurCommand = SendCmd.Text();
  }
  store_.CurProtocol = protocol;
}

void frmEvent::SendCmd_Click() {
  store_.CurCommand = SendCmd.Text();
  EventName.SetText(store_.CurCommand);
  EventDescription.SetText(store_.CurCommand + " from " + store_.CurProtocol);
  Hint.SetText("");
}

void frmEvent::OKButton_Click() {
  // An event without a command would never be raised, and an edited one would lose its command.
  if (Protocol.Text().empty() || SendCmd.Text().empty()) {
    Hint.SetText(kPickHint);
    return;
  }
  accepted_ = true;
  Hide();
}

void frmEvent::CancelButton_Click() {
  accepted_ = false;
  Hide();
}

}  // namespace keplo
