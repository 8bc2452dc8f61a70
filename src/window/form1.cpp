#include "window/form1.h"

#include <utility>

#include "failure.h"
#include "ui/boxes.h"
#include "window/new_protocol.h"

namespace keplo {

Form1::Form1(KeploMod& mod, Win32Ser& line, ui::Boxes& boxes)
    : Undo(mod.Store), mod_(mod), line_(line), boxes_(boxes) {
  ShowDesign();
  BindHandlers();
}

Form1::~Form1() { Form_Unload(); }

void Form1::ShowDesign() {
  for (const ControlRow& row : Controls()) {
    ModelOf(*this, row).SetBackColour(row.Back);
    if (const auto* label = std::get_if<ui::Label Form1::*>(&row.Model)) (this->**label).SetText(row.Caption);
  }
  for (const MenuColumn& column : Menus()) {
    for (const MenuRow& row : column.Entries) {
      if (row.Model != nullptr) (this->*row.Model).SetChecked(row.Checked);
    }
  }
  HScroll1.SmallChange = 30;   // samples
  HScroll1.LargeChange = 200;  // samples
}

void Form1::BindHandlers() {
  Protocol.OnClick = [this] { Protocol_Click(); };
  SendCmd.OnClick = [this] { SendCmd_Click(); };
  SaveCmdButton.OnClick = [this] { SaveCmdButton_Click(); };
  DeleteCmdButton.OnClick = [this] { DeleteCmdButton_Click(); };
  RecButton.OnClick = [this] { RecButton_Click(); };
  SendButton.OnClick = [this] { SendButton_Click(); };
  TestCheck.OnClick = [this] { TestCheck_Click(); };
  Timer1.OnTimer = [this] { Timer1_Timer(); };
  HScroll1.OnChange = [this] { HScroll1_Change(); };
  GReset.OnClick = [this] { GReset_Click(); };
  Gshr.OnClick = [this] { Gshr_Click(); };
  GExt.OnClick = [this] { GExt_Click(); };
  MinButton.OnClick = [this] { MinButton_Click(); };
  OKButton.OnClick = [this] { OKButton_Click(); };
  FileExit.OnClick = [this] { FileExit_Click(); };
  ComList.OnClick = [this] { ComList_Click(); };
  StdDcdMenu.OnClick = [this] { StdDcdMenu_Click(); };
  IRMouseMenu.OnClick = [this] { IRMouseMenu_Click(); };
  TxDCheckBox.OnClick = [this] { TxDCheckBox_Click(); };
  BeepCheckbox.OnClick = [this] { BeepCheckbox_Click(); };
  VexilCheckbox.OnClick = [this] { VexilCheckbox_Click(); };
  Zone.OnClick = [this] { Zone_Click(); };
  MenuProcDelay.OnClick = [this] { MenuProcDelay_Click(); };
  HelpContentMenu.OnClick = [this] { HelpContentMenu_Click(); };
  WebPageMenu.OnClick = [this] { WebPageMenu_Click(); };
  UpdateMenu.OnClick = [this] { UpdateMenu_Click(); };
  AboutMenu.OnClick = [this] { AboutMenu_Click(); };
  CalibrationMenu.OnClick = [this] { CalibrationMenu_Click(); };
  UndoMenu.OnClick = [this] { UndoMenu_Click(); };
  OpenRecordingMenu.OnClick = [this] { OpenRecordingMenu_Click(); };
  SaveRecordingMenu.OnClick = [this] { SaveRecordingMenu_Click(); };
  FileNewMenu.OnClick = [this] { FileNewMenu_Click(); };
  EditMenu.OnClick = [this] { EditMenu_Click(); };
  ProtoDeleteMenu.OnClick = [this] { ProtoDeleteMenu_Click(); };
}

bool Form1::RecordedSelected() const { return EqualNoCase(mod_.Store.CurProtocol, kRecorded); }

void Form1::Beep(std::int32_t frequency, std::int32_t duration) {
  if (mod_.Settings.BeepOn) line_.SpeakBeep(frequency, duration);
}

void Form1::Tell(std::string_view text) { boxes_.Message(text, kBoxTitle); }

bool Form1::Ask(std::string_view text) { return boxes_.Question(text, kBoxTitle); }

void Form1::TellFailure(const std::string& text) {
  if (!failuresWhileLoading_) {
    Tell(text);
  } else if (failuresWhileLoading_->find(text) == std::string::npos) {
    *failuresWhileLoading_ += (failuresWhileLoading_->empty() ? "" : "\r\n") + text;
  }
}

bool Form1::Told(const std::function<void()>& action) {
  bool done = true;
  try {
    action();
  } catch (const Failure& failure) {
    TellFailure(failure.what());
    done = false;
  }
  if (const auto aside = std::exchange(mod_.Store.KeptAside, {}); !aside.empty()) {
    TellFailure(mod_.Store.Path.string() + " had been changed by another program. What it wrote is kept in " +
                aside.string() + "; take its new commands and settings over from there.");
  }
  return done;
}

}  // namespace keplo
