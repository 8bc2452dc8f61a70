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
      Undo(mod.Store, form.UndoMenu, Dialogue),
      Note(form.Note, form.DescribeLine),
      Settings(mod.Store, Dialogue),
      Options(mod.Settings, line, OptionsOf(form), Settings, Dialogue),
      Ports(mod.Settings, line, form.ComList, Settings, Dialogue, Note, form),
      Waveform(mod.Signal, form.Wave, form.Surface, form.HScroll1, form.SendPulse),
      Commands(mod, {form.Protocol, form.SendCmd, FieldsOf(form)}, Validation, Undo, Dialogue),
      Record(mod, line, RecordControlsOf(form), Waveform, Validation, Note, form),
      Recordings(mod.Signal, mod.Settings, form.Recordings, Record, form.Note, Dialogue),
      Remotes(mod.Store, form.Remotes, Commands, Undo, Dialogue),
      Send(
          mod, line, SendControlsOf(form), Waveform, [&form] { return form.WindowLarge(); }, Dialogue, Note,
          form),
      Calibration(mod.Settings, mod.Signal, line,
                  {form.SendPulse, form.IRCommand, form.ProcDelayparameter, form.Timer1}, Settings, Dialogue,
                  form),
      Protocols(mod, {form.Protocol, form.Timer1, FieldsOf(form)}, Commands, Undo, Dialogue,
                form.OnProtocolDialog),
      File(mod, form.FileTimer, {Commands, Options, Ports, Protocols, form.Note}, Dialogue),
      Help(mod.Settings, form.Programs, Dialogue) {}

}  // namespace keplo
