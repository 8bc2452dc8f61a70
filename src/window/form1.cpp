#include "window/form1.h"

#include "config/parse_number.h"
#include "keplo_mod.h"
#include "window/flows.h"

namespace keplo {

Form1::Form1(KeploMod& mod, Win32Ser& line, ui::Boxes& boxes)
    : mod_(mod), line_(line), flows_(std::make_unique<Flows>(*this, mod, line, boxes)) {
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
  FileTimer.OnTimer = [this] { FileTimer_Timer(); };
  HScroll1.OnChange = [this] { HScroll1_Change(); };
  GReset.OnClick = [this] { GReset_Click(); };
  Gshr.OnClick = [this] { Gshr_Click(); };
  GExt.OnClick = [this] { GExt_Click(); };
  MinButton.OnClick = [this] { MinButton_Click(); };
  OKButton.OnClick = [this] { OKButton_Click(); };
  FileExit.OnClick = [this] { FileExit_Click(); };
  ComList.OnClick = [this] { ComList_Click(); };
  ComList.PicksAgain = true;
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
  FileNewMenu.OnClick = [this] { FileNewMenu_Click(); };
  EditMenu.OnClick = [this] { EditMenu_Click(); };
  ProtoDeleteMenu.OnClick = [this] { ProtoDeleteMenu_Click(); };
  UndoMenu.OnClick = [this] { UndoMenu_Click(); };
  OpenRecordingMenu.OnClick = [this] { OpenRecordingMenu_Click(); };
  SaveRecordingMenu.OnClick = [this] { SaveRecordingMenu_Click(); };
  ImportMenu.OnClick = [this] { ImportMenu_Click(); };
  ExportMenu.OnClick = [this] { ExportMenu_Click(); };
}

void Form1::ListAvailableCOM() { flows_->Ports.Fill(); }
void Form1::Protocol_Click() { flows_->Commands.ApplyProtocol(); }
void Form1::SendCmd_Click() { flows_->Commands.ApplyCommand(); }
void Form1::SaveCmdButton_Click() { flows_->Commands.Save(); }
void Form1::DeleteCmdButton_Click() { flows_->Commands.Delete(); }
void Form1::RecButton_Click() { flows_->Record.Record(); }
void Form1::SendButton_Click() { flows_->Send.Send(); }
void Form1::TestCheck_Click() { flows_->Send.StartLoop(); }
void Form1::Timer1_Timer() { flows_->Send.SendAgain(); }
void Form1::FileTimer_Timer() { flows_->File.Check(); }
void Form1::HScroll1_Change() { flows_->Waveform.Scroll(); }
void Form1::GReset_Click() { flows_->Waveform.Reset(); }
void Form1::Gshr_Click() { flows_->Waveform.Squeeze(); }
void Form1::GExt_Click() { flows_->Waveform.Stretch(); }
void Form1::ComList_Click() { flows_->Ports.OpenSelected(); }
void Form1::StdDcdMenu_Click() { flows_->Options.SetReceiver(0); }
void Form1::IRMouseMenu_Click() { flows_->Options.SetReceiver(1); }
void Form1::TxDCheckBox_Click() { flows_->Options.ApplyOutput(); }
void Form1::BeepCheckbox_Click() { flows_->Options.ApplyBeep(); }
void Form1::VexilCheckbox_Click() { flows_->Options.ApplyZoneHardware(); }
void Form1::Zone_Click() { flows_->Options.ApplyZone(); }
void Form1::MenuProcDelay_Click() { flows_->Options.AskProcDelay(); }
void Form1::CalibrationMenu_Click() { flows_->Calibration.Start(); }
void Form1::FileNewMenu_Click() { flows_->Protocols.StartNew(); }
void Form1::EditMenu_Click() { flows_->Protocols.StartEdit(); }
void Form1::ProtoDeleteMenu_Click() { flows_->Protocols.Delete(); }
void Form1::UndoMenu_Click() { flows_->Commands.Undo(); }
void Form1::OpenRecordingMenu_Click() { flows_->Recordings.Open(); }
void Form1::SaveRecordingMenu_Click() { flows_->Recordings.Save(); }
void Form1::ImportMenu_Click() { flows_->Remotes.Import(); }
void Form1::ExportMenu_Click() { flows_->Remotes.Export(); }
void Form1::HelpContentMenu_Click() { flows_->Help.ShowContents(); }
void Form1::WebPageMenu_Click() { flows_->Help.ShowWebPage(); }
void Form1::UpdateMenu_Click() { flows_->Help.ShowUpdates(); }
void Form1::AboutMenu_Click() { flows_->Help.ShowAbout(); }

std::int32_t Form1::Pulse() const { return Rounded<std::int32_t>(SendPulse.Text()); }

double Form1::WavePlace(double sample) const { return flows_->Waveform.PlaceOf(sample); }
double Form1::WaveSample(double place) const { return flows_->Waveform.SampleAt(place); }
std::optional<ui::DrawingSurface::Point> Form1::WaveEntry() const { return flows_->Waveform.Entry(); }
double Form1::WaveEnd() const { return flows_->Waveform.End(); }
void Form1::ZoomWave(double place, double factor) { flows_->Waveform.ZoomAt(place, factor); }
void Form1::SlideWave(int samples) { flows_->Waveform.Slide(samples); }
void Form1::FitWave() { flows_->Waveform.Fit(); }
NewProtocol* Form1::ProtocolDialog() const { return flows_->Protocols.Dialog(); }

void Form1::MinButton_Click() {
  windowLarge_ = !windowLarge_;
  SetTitle((windowLarge_ ? "Orlo's Keplo v" : "Keplo Send v") + VersionText);
  if (OnResize) OnResize();
}

}  // namespace keplo
