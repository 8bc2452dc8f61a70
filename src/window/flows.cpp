#include "window/flows.h"

#include "window/form1.h"

namespace keplo {

namespace {

ReadingFields FieldsOf(Form1& form) {
  return {.CodeStr = form.CodeStr,
          .SendPulse = form.SendPulse,
          .IRCommand = form.IRCommand,
          .BitNr = form.BitNr,
          .GType = form.GType,
          .Rpt = form.Rpt,
          .GProt = form.GProt,
          .plen1 = form.plen1,
          .plen0 = form.plen0,
          .AddrVal = form.AddrVal,
          .CmdVal = form.CmdVal,
          .ToggleVal = form.ToggleVal,
          .Frame1 = form.Frame1,
          .ZoneNr = form.ZoneNr};
}

Options::Controls OptionsOf(Form1& form) {
  return {.StdDcdMenu = form.StdDcdMenu,
          .IRMouseMenu = form.IRMouseMenu,
          .TxDCheckBox = form.TxDCheckBox,
          .BeepCheckbox = form.BeepCheckbox,
          .VexilCheckbox = form.VexilCheckbox,
          .Zone = form.Zone,
          .ZoneNr = form.ZoneNr,
          .ReceiverType = form.ReceiverType,
          .ProcDelayparameter = form.ProcDelayparameter};
}

RecordFlow::Controls RecordControlsOf(Form1& form) {
  return {.RecButton = form.RecButton,
          .VexilCheckbox = form.VexilCheckbox,
          .Protocol = form.Protocol,
          .SendCmd = form.SendCmd,
          .SendLoop = form.Timer1,
          .Fields = FieldsOf(form)};
}

SendFlow::Controls SendControlsOf(Form1& form) {
  return {.SendButton = form.SendButton,
          .TestCheck = form.TestCheck,
          .VexilCheckbox = form.VexilCheckbox,
          .Zone = form.Zone,
          .Protocol = form.Protocol,
          .SendCmd = form.SendCmd,
          .HScroll1 = form.HScroll1,
          .Loop = form.Timer1,
          .Fields = FieldsOf(form)};
}

}  // namespace

Flows::Flows(Form1& form, KeploMod& mod, Win32Ser& line, ui::Boxes& boxes)
    : Dialogue(boxes, mod.Store),
      Settings(mod.Store, Dialogue),
      Options(mod.Settings, line, OptionsOf(form), Settings, Dialogue),
      Ports(mod.Settings, line, form.ComList, Settings, Dialogue, form),
      Waveform(mod.Signal, form.Wave, form.Surface, form.HScroll1, form.SendPulse),
      Commands(mod, {form.Protocol, form.SendCmd, FieldsOf(form)}, Validation, Dialogue),
      Record(mod, line, RecordControlsOf(form), Waveform, Validation, form),
      Send(
          mod, line, SendControlsOf(form), Waveform, [&form] { return form.WindowLarge(); }, Dialogue, form),
      Calibration(mod.Settings, mod.Signal, line,
                  {form.SendPulse, form.IRCommand, form.ProcDelayparameter, form.Timer1}, Settings, Dialogue,
                  form),
      Protocols(mod, {form.Protocol, form.Timer1, FieldsOf(form)}, Commands, Dialogue, form.OnProtocolDialog),
      Help(mod.Settings, form.Programs, Dialogue) {}

}  // namespace keplo
