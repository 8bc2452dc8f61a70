#include <optional>
#include <string>
#include <utility>

#include "config/protocols.h"
#include "window/form1.h"

namespace keplo {

void Form1::UndoMenu_Click() {
  if (!Undo.CanUndo()) {
    Tell("There is no change of commands or protocols to undo.");
    return;
  }
  std::string why;
  if (!Told([&] { why = Undo.Undo(); })) return;
  if (!why.empty()) {
    Tell(why);
    return;
  }
  const std::string protocol = Protocol.Text(), command = SendCmd.Text();
  ListProtocolsWithRecorded();
  if (!Protocol.SelectText(protocol)) Protocol.Select(0);
  SendCmd.SelectText(command);
}

void Form1::OpenRecordingMenu_Click() {
  std::optional<std::string> capture;
  if (!ReadRecording || !Told([&] { capture = ReadRecording(); }) || !capture) return;
  Timer1.SetEnabled(false);
  ClearReading();
  mod_.Signal.RawCapture = std::move(*capture);
  ExplainCapture();
}

void Form1::SaveRecordingMenu_Click() {
  if (mod_.Signal.RawCapture.find_first_not_of('\0') == std::string::npos) {
    Tell("There is no recording to save. Press Record and a key of the remote first.");
    return;
  }
  if (WriteRecording) Told([&] { WriteRecording(mod_.Signal.RawCapture); });
}

}  // namespace keplo
