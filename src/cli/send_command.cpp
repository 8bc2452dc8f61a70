#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/captured_transmission.h"
#include "cli/commands.h"
#include "cli/live_line.h"
#include "cli/open_install.h"
#include "cli/press_table.h"
#include "cli/reference.h"
#include "cli/write_file.h"
#include "config/beeps.h"
#include "config/learn.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "config/sections.h"
#include "config/transmission.h"
#include "formats/formats.h"
#include "line/port_check.h"
#include "line/replay_line.h"
#include "program/app_path.h"
#include "program/line_options.h"
#include "program/printable.h"
#include "signal/raw/raw_digits.h"
#include "signal/send_as.h"
#include "signal/zone_link.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

constexpr std::size_t kShortestCode = 6;  // characters including the leading G
constexpr int kLongestWritten = 100'000;  // microseconds; the longest slot in a file
constexpr std::string_view kStandardOutput = "-";
constexpr std::int32_t kPauseBetweenPresses =
    200'000;  // microseconds; with less, receivers would see one press

struct SendOptions {
  std::string AppPath;
  std::string Protocol, Command;  // a learned command
  std::string Code;               // or a code
  std::string OutFile;
  std::optional<std::int32_t> Pulse, Port;
  std::optional<std::int16_t> Zone;  // selected before sending
  int Count = 1;
};

/// Adds the leading G to a typed code if it is missing.
std::string TypedCode(const std::string& code) {
  const bool headed = !code.empty() && LowerCase(code.front()) == 'g';
  return "G" + code.substr(headed ? 1 : 0);
}

std::string DigitsOf(const std::string& code) {
  if (code.size() < kShortestCode) {
    throw Refused("The code " + code + " is too short to be sent: it has " +
                  std::to_string(std::max<std::size_t>(code.size(), 1) - 1) + " digits; expected " +
                  std::to_string(kShortestCode - 1) + " or more.");
  }
  std::string digits = code.substr(1);
  if (digits.find_first_not_of("01") != std::string::npos) {
    throw Refused("Please use only 1's and 0's for the code");
  }
  return digits;
}

/// Loads the parameters of a protocol, without those parts of SENDAS that the first analysis does not
/// support.
void LoadParams(KeploMod& mod, const std::string& protocol, Analysis analysis) {
  if (IsRecorded(protocol)) {
    throw Refused("Information about received command is not complete!");
  }
  if (!LoadProtocolParams(mod.Store.CfgText, protocol, mod.ProtocolParams, mod.Signal.Measured.ProtoKind)) {
    throw Refused(RefusalText({Refusal::NoSection, protocol}));
  }
  if (analysis == Analysis::First) mod.ProtocolParams.SENDAS = WithoutWays(mod.ProtocolParams.SENDAS);
}

/// @param sent number of transmissions so far, which determines the toggle digit or form
Transmission NextTransmission(KeploMod& mod, const std::string& digits, bool& toggle, int sent) try {
  return TransmissionOfCode(mod.Store, "G" + digits, mod.Signal.Measured.ProtoKind, mod.ProtocolParams,
                            toggle, static_cast<std::size_t>(sent));
} catch (const Failure& tooLong) {
  throw Refused(tooLong.what());
}

/// Sends the code on a line.
/// @param shouldContinue called after each press; the remaining ones are skipped if it returns false
void Transmit(KeploMod& mod, Win32Ser& line, const std::string& digits, const SendOptions& options,
              const std::function<bool()>& shouldContinue) {
  bool toggle = false;
  const Beeps beeps(line, mod.Settings);
  PrepareToSend(line);
  for (int sent = 0; sent < options.Count && (sent == 0 || shouldContinue()); ++sent) {
    if (sent > 0) line.uDelay(kPauseBetweenPresses);
    Transmission transmission = NextTransmission(mod, digits, toggle, sent);
    if (options.Pulse) transmission.Slot = *options.Pulse;
    beeps.Sound(5000, 50);
    PutOnAir(line, transmission, mod.Settings.InterfaceType);
    beeps.Sound(2000, 50);
  }
}

void RequireAudible(const LineOutput& output) {
  const LineOutput::Signal& last = output.Signals.back();
  if (!PulsesOf(last).empty()) return;
  throw Refused("Nothing can be heard of the code: its slots are of " + std::to_string(last.Pulse) +
                " us. Check SENDPLS, BIT0 and BIT1 of the protocol.");
}

/// What was sent, in the recording format for a file name.
std::string RecordingOf(const LineOutput& output, const std::string& file) {
  std::vector<PulseTrain> presses;
  for (const LineOutput::Signal& signal : output.Signals) presses.push_back(PulsesOf(signal));
  const Format& format = FormatToWrite(file);
  const std::int32_t carrier = output.Signals.back().Carrier;
  const bool tellsCarrier = format.Name == kMode2Format && carrier != kUsualCarrier;
  return (tellsCarrier ? "carrier " + std::to_string(carrier) + "\n" : "") + format.Write(presses);
}

std::string Report(const LineOutput& output, const SendOptions& options, const std::string& sent) {
  const LineOutput::Signal& last = output.Signals.back();
  std::string text = sent + (options.OutFile.empty() ? " sent" : " written to " + options.OutFile);
  if (options.Count > 1) text += ", " + std::to_string(options.Count) + " times";
  return text + ": " + std::to_string(last.Bytes.size() * 8) + " slots of " + std::to_string(last.Pulse) +
         " us";
}

/// What to send, spelled as in keplo.cfg.
struct Sendable {
  std::string Protocol, Name, Code;  // the code with its leading G
};

Sendable SendableOf(std::string_view text, const SendOptions& options) {
  if (!options.Code.empty()) {
    const std::string code = TypedCode(options.Code);
    return {ProtocolAsStored(text, options.Protocol), code, code};
  }
  const CommandReference reference = ReferenceOf(options.Protocol, options.Command);
  const auto command = FindLearned(text, reference.Protocol, reference.Command);
  return {ProtocolAsStored(text, reference.Protocol), command ? command->Name : reference.Command,
          command ? command->Code : ""};
}

/// @throws Refused if a port cannot send
void RequireSender(const KeploMod& mod, std::int32_t number, const std::string& appPathOption) {
  const std::string advice = "--out FILE keeps what would be sent, and " +
                             TypedCommand("ports", appPathOption) + " lists the ports that have a device";
  const auto port = PortOf(mod, number);
  if (!port) {
    throw Refused("COM " + std::to_string(number) +
                  " has no device on this machine, so nothing goes on air; " + advice);
  }
  // What is connected to a serial port is unknown.
  if (port->Type == MappedPort::Kind::Serial) return;
  KernelCalls calls;
  const PortCheck check = CheckPort(calls, *port);
  if (!check.Opens || check.Sends) return;
  throw Refused("Nothing goes on air by COM " + std::to_string(number) + ". " + check.Why + " " + advice);
}

/// @param asked the requested zone
/// @param ofSettings the zone of VEXIL if none is requested; 0 for none
/// @throws Refused if the zone does not answer, since the signal would go to another one
void SelectZone(LiveLine& live, std::optional<std::int16_t> asked, std::int16_t ofSettings) {
  const std::int16_t zone = asked.value_or(ofSettings);
  if (zone <= 0 || SendZone(live.Line(), zone)) return;
  throw Refused("Zone " + std::to_string(zone) + (asked ? "" : ", which is chosen for sending (VEXIL),") +
                " cannot be selected at " + live.Name() +
                ": no zone hardware confirms it, and no room of that number is named in ports.conf." +
                (asked ? "" : " Set VEXIL to 0 if there is none."));
}

/// Sends the code on the port.
void SendOnAir(KeploMod& mod, const std::string& digits, const SendOptions& options) {
  ReadSettings(mod.Store, mod.Settings);
  const std::int32_t port = options.Port.value_or(mod.Settings.ComPortNr);
  RequireSender(mod, port, options.AppPath);
  if (const std::int32_t pulse = options.Pulse.value_or(mod.ProtocolParams.SENDPLS); pulse > kLongestSlot) {
    throw Refused("A pulse of " + std::to_string(pulse) + " us is not sent. Use 1 to " +
                  std::to_string(kLongestSlot) + " us.");
  }
  LiveLine live(mod, port);
  SelectZone(live, options.Zone, mod.Settings.VexilMode);
  const auto sent = [&] { return live.Device().Sent(); };
  Transmit(mod, live.Line(), digits, options, sent);
  if (sent()) return;
  // The reason has already been reported.
  throw Refused("The signal did not go out whole at " + live.Name() + ".");
}

/// A raw command needs lengths instead of parameters.
void CheckRaw(const KeploMod& mod, const Sendable& sendable, const SendOptions& options) {
  if (!AreRawDigits(std::string_view(sendable.Code).substr(1))) return;
  if (FindRawSignal(mod.Store, sendable.Code) == nullptr) {
    throw Refused("The lengths of the raw command " + sendable.Name +
                  " are missing or damaged, so that it cannot be sent.");
  }
  if (options.Pulse) throw UsageError("a raw command is sent with its own lengths; leave --pulse out");
}

int Send(const SendOptions& options) {
  OpenedConfig config(options.AppPath);
  KeploMod& mod = config.Mod;
  const Sendable sendable = SendableOf(config.Text(), options);
  LoadParams(mod, sendable.Protocol, AnalysisOf(config));
  if (sendable.Code.empty()) throw Refused(RefusalText({Refusal::NoSuchCommand, sendable.Name}));
  const std::string sent = CommandReference{sendable.Protocol, sendable.Name}.Text();
  CheckRaw(mod, sendable, options);
  ReplayLine line({}, mod.Settings.ReceiverKind);
  Transmit(mod, line, DigitsOf(sendable.Code), options, [] { return true; });
  RequireAudible(line.Output());
  if (options.OutFile == kStandardOutput) {
    std::cout << RecordingOf(line.Output(), options.OutFile);
    return kDone;
  }
  if (options.OutFile.empty()) {
    SendOnAir(mod, DigitsOf(sendable.Code), options);
  } else {
    Write([&] { WriteFile(options.OutFile, RecordingOf(line.Output(), options.OutFile)); });
  }
  std::cout << Printable(Report(line.Output(), options, sent)) << '\n';
  return kDone;
}

}  // namespace

void AddSendCommand(Command& root) {
  Command command = root.Sub("send", "Send a learned command or a code");
  const auto options = std::make_shared<SendOptions>();
  Argument protocol =
      command.Word("PROTOCOL", options->Protocol, "Section of keplo.cfg, or both as 'NEC&POWER'");
  Argument name = command.Word("COMMAND", options->Command, "Name of the learned command");
  Argument code = command.Word("--code", options->Code, "Send this code, G and its digits, instead");
  Argument codeProtocol =
      command.Word("--protocol", options->Protocol, "Section of keplo.cfg that tells how");
  name.Needs(protocol).Excludes(code);
  protocol.Excludes(codeProtocol);
  code.Needs(codeProtocol);
  codeProtocol.Needs(code);
  const Argument out =
      command.Word("--out", options->OutFile,
                   "Write what would be sent to this file as mode2 text; - for standard output");
  AddPortOption(command, options->Port).Excludes(out);
  command.Number("--zone", options->Zone, "Send to this zone, or to the room of this number", {1, 8})
      .Excludes(out);
  command.Number("--pulse", options->Pulse, "Length of a slot, microseconds, in place of SENDPLS",
                 {1, kLongestWritten});
  command.Number("--count", options->Count, "How often the key is pressed", {1, 1000});
  AddAppPathOption(command, options->AppPath);
  command.Examples(
      {"keplo send 'NEC&TV_POWER'", "keplo send --code G101010010000 --protocol SONY --out press.mode2"});
  command.Runs([options] {
    if (options->Code.empty() && options->Command.empty() && !SplitReference(options->Protocol)) {
      throw UsageError("PROTOCOL and COMMAND, or --code and --protocol is required");
    }
    return Send(*options);
  });
}

}  // namespace keplo::cli
