#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "config/config_builder.h"
#include "disk/posix_file_system.h"
#include "doubles/fake_line.h"
#include "doubles/scripted_boxes.h"
#include "doubles/temp_folder.h"
#include "events/event_map_fixture.h"
#include "events/events_on_disk.h"
#include "shell/keplo.h"

namespace keplo::tests {

/// The event dialog as a user would handle it: the script plays on the shown dialog; none cancels.
class ScriptedDialog : public EventDialogShower {
 public:
  std::function<void(frmEvent&)> Script;
  void ShowModal(frmEvent& dialog) override {
    if (Script) Script(dialog);
  }
};

inline std::string RowTexts(const ui::ListView& list) {
  std::string rows;
  for (int row = 1; row <= list.Count(); ++row) {
    for (int field = 0; field < ui::ListView::kFields; ++field) rows += list.Text(row, field) + "|";
    rows += "\n";
  }
  return rows;
}

/// The texts of the status panel in a line.
inline std::string PanelText(const StatusPanel& panel) {
  return panel.CtlComPort.Text() + "|" + panel.CtlPortStatus.Text() + "|" + panel.RcvActivated.Text() + "|" +
         panel.VexilAvailable.Text() + "|" + panel.InterfaceType.Text();
}

/// An application path with a file and an event map, and a control that comes up from them.
class ShellTest : public ::testing::Test {
 protected:
  void WriteConfig(const std::string& sections, const std::string& general = kGeneral) {
    folder_.Write("keplo.cfg", Config(sections, general));
  }

  void WriteEvents(const std::vector<clsKeploEvent>& events) {
    CreateEventTable(folder_.Path() / "inputKeplo.mdb", files_);
    EventsOnDisk disk(folder_.Path());
    for (const auto& event : events) ASSERT_TRUE(disk.Events.Add(std::make_shared<clsKeploEvent>(event)));
  }

  /// The event table as the next start finds it; after every change it must read as the list does.
  std::string Stored() {
    EventsOnDisk disk(folder_.Path());
    disk.Events.Initialise(disk.List);
    return RowTexts(disk.List);
  }

  /// Creates the control without loading its events.
  Keplo& Create() {
    mod_ = std::make_unique<KeploMod>(folder_.Path(), files_);
    control_ = std::make_unique<Keplo>(*mod_, line_, KeploWindows{boxes_, dialog_, [this] { mainWindow_(); }},
                                       clock_);
    control_->TriggerInputEvent = [this](HostInputEvent& event) {
      raised_.push_back(event.EventID + " " + std::get<std::string>(event.EventCommand));
      line_.Calls.push_back("event " + event.EventID);
    };
    control_->TriggerInputErrorCondition = [this](HostErrorRecord& record, bool&) {
      errors_.push_back(record.ErrorSource + " " + record.ErrorProcedure);
      reported_.push_back(record.ErrorDescription);
    };
    return *control_;
  }

  /// Creates, initialises and starts the control, and forgets the calls up to there.
  Keplo& Start() {
    Keplo& control = Create();
    EXPECT_EQ(control.InputInitialise(nullptr), 1);
    control.InputStartMonitoring();
    line_.Calls.clear();
    return control;
  }

  /// From now on the user gives an event a name, and presses OK.
  void AnswerOK(const std::string& name = {}) {
    dialog_.Script = [=](frmEvent& dialog) {
      if (!name.empty()) dialog.EventName.SetText(name);
      dialog.OKButton_Click();
    };
  }

  TempFolder folder_;
  PosixFileSystem files_;
  StoppedClock clock_;
  ScriptedBoxes boxes_;
  ScriptedDialog dialog_;
  FakeLine line_;
  std::function<void()> mainWindow_ = [] {};
  std::unique_ptr<KeploMod> mod_;
  std::unique_ptr<Keplo> control_;
  std::vector<std::string> raised_, errors_, reported_;  // errors by source and procedure, and description
};

/// What an event dialog is about: an event, and the commands of two protocols.
class EventDialogTest : public ::testing::Test {
 protected:
  EventDialogTest() {
    store_.CfgText =
        Config(Protocol("NEC", {"G1010,POWER", "G1011,MUTE"}) + Protocol("SONY", {"G1110,PLAY"}));
  }

  PosixFileSystem files_;
  CfgStore store_{"unused", files_};
  Settings settings_;
  clsKeploEvent event_{"7", "", "", "", false, 0};
};

}  // namespace keplo::tests
