#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "cli/sent_pulses.h"
#include "cli/write_file.h"
#include "config/commands.h"
#include "config/learn.h"
#include "config/protocols.h"
#include "formats/formats.h"
#include "line/replay_line.h"
#include "program/app_path.h"
#include "signal/send_bits.h"

namespace keplo::cli {

namespace {

constexpr std::size_t kShortestCode = 6;  // characters with the leading G; fewer are no command
constexpr int kLongestSlot = 100'000;     // microseconds; a hundred times what remotes use
constexpr std::string_view kStandardOutput = "-";

struct SendOptions {
  std::string AppPath;
  std::string Protocol, Command;  // of a learned command
  std::string Code;               // in place of one
  std::string OutFile;
  std::optional<std::int32_t> Pulse;
  int Count = 1;
};

/// Input that cannot be sent, with what the window says of it.
class Unsendable : public Failure {
 public:
  explicit Unsendable(const std::string& text) : Failure(kNoResult, text) {}
};

/// The code of a learned command, with its leading G.
std::string StoredCode(std::string_view text, const SendOptions& options) {
  const std::vector<LearnedCommand> commands = ListCommands(text, options.Protocol);
  const auto named = [&](const auto& fits) {
    return std::find_if(commands.begin(), commands.end(), [&](const LearnedCommand& command) {
      return fits(Trimmed(command.Name), options.Command);
    });
  };
  auto command = named([](std::string_view left, std::string_view right) { return left == right; });
  if (command == commands.end()) command = named(EqualNoCase);
  if (command == commands.end()) {
    throw Unsendable(RefusalText({Refusal::NoSuchCommand, options.Command}));
  }
  return command->Code;
}

/// A code that was typed: with its leading G, or the digits alone.
std::string TypedCode(const std::string& code) {
  const bool headed = !code.empty() && LowerCase(code.front()) == 'g';
  return "G" + code.substr(headed ? 1 : 0);
}

std::string DigitsOf(const std::string& code) {
  if (code.size() < kShortestCode) {
    throw Unsendable("The code " + code + " is too short to be sent: it has " +
                     std::to_string(std::max<std::size_t>(code.size(), 1) - 1) + " digits; expected " +
                     std::to_string(kShortestCode - 1) + " or more.");
  }
  std::string digits = code.substr(1);
  if (digits.find_first_not_of("01") != std::string::npos) {
    throw Unsendable("Please use only 1's and 0's for the code");
  }
  return digits;
}

void LoadParams(KeploMod& mod, const std::string& protocol) {
  if (EqualNoCase(protocol, "recorded")) {
    throw Unsendable("Information about received command is not complete!");
  }
  if (!LoadProtocolParams(mod.Store.CfgText, protocol, mod.ProtocolParams, mod.Signal.Measured.ProtoKind)) {
    throw Unsendable(RefusalText({Refusal::NoSection, protocol}));
  }
}

std::string SlotsOf(KeploMod& mod, std::string& code, bool& toggle) try {
  return PadToBytes(BuildSendBits(code, mod.Signal.Measured.ProtoKind, mod.ProtocolParams, toggle));
} catch (const Failure& tooLong) {
  throw Unsendable(tooLong.what());
}

/// Puts the code out on the line, each transmission with its own toggle digit.
void Transmit(KeploMod& mod, Win32Ser& line, const std::string& digits, const SendOptions& options) {
  const std::int32_t pulse = options.Pulse.value_or(mod.ProtocolParams.SENDPLS);
  bool toggle = false;
  line.DTR(0);
  line.RTS(-1);
  for (int sent = 0; sent < options.Count; ++sent) {
    std::string code = digits;
    const std::string slots = SlotsOf(mod, code, toggle);
    if (mod.Settings.BeepOn) line.SpeakBeep(5000, 50);
    line.IRSend(BitsToChars(slots), pulse, mod.Settings.InterfaceType);
    if (mod.Settings.BeepOn) line.SpeakBeep(2000, 50);
  }
}

void RequireAudible(const LineOutput& output) {
  const LineOutput::Signal& last = output.Signals.back();
  if (!PulsesOf(last).empty()) return;
  throw Unsendable("Nothing can be heard of the code: its slots are of " + std::to_string(last.Pulse) +
                   " us. Check SENDPLS, BIT0 and BIT1 of the protocol.");
}

/// What was sent, as a recording of that file name holds it.
std::string RecordingOf(const LineOutput& output, const std::string& file) {
  std::vector<PulseTrain> presses;
  for (const LineOutput::Signal& signal : output.Signals) presses.push_back(PulsesOf(signal));
  return FormatToWrite(file).Write(presses);
}

std::string Report(const LineOutput& output, const SendOptions& options, const std::string& code) {
  const LineOutput::Signal& last = output.Signals.back();
  std::string text = options.Protocol + "&" + (options.Code.empty() ? options.Command : code);
  text += options.OutFile.empty() ? " sent" : " written to " + options.OutFile;
  if (options.Count > 1) text += ", " + std::to_string(options.Count) + " times";
  return text + ": " + std::to_string(last.Bytes.size() * 8) + " slots of " + std::to_string(last.Pulse) +
         " us\n";
}

int Send(const SendOptions& options) try {
  OpenConfig config(options.AppPath);
  KeploMod& mod = config.Mod;
  LoadParams(mod, options.Protocol);
  const std::string code =
      options.Code.empty() ? StoredCode(mod.Store.CfgText, options) : TypedCode(options.Code);
  ReplayLine line({}, mod.Settings.ReceiverKind);
  Transmit(mod, line, DigitsOf(code), options);
  RequireAudible(line.Output());
  if (options.OutFile == kStandardOutput) {
    std::cout << RecordingOf(line.Output(), options.OutFile);
    return kDone;
  }
  if (!options.OutFile.empty()) WriteFile(options.OutFile, RecordingOf(line.Output(), options.OutFile));
  std::cout << Report(line.Output(), options, code);
  return kDone;
} catch (const Unsendable& refusal) {
  std::cerr << "keplo: " << refusal.what() << '\n';
  return kNoResult;
}

}  // namespace

void AddSendCommand(Command& root) {
  Command command = root.Sub("send", "Send a learned command or a code");
  const auto options = std::make_shared<SendOptions>();
  Argument protocol = command.Word("PROTOCOL", options->Protocol, "Section of keplo.cfg");
  Argument name = command.Word("COMMAND", options->Command, "Name of the learned command");
  Argument code = command.Word("--code", options->Code, "Send this code, G and its digits, instead");
  Argument codeProtocol =
      command.Word("--protocol", options->Protocol, "Section of keplo.cfg that tells how");
  name.Needs(protocol).Excludes(code);
  protocol.Excludes(codeProtocol);
  code.Needs(codeProtocol);
  codeProtocol.Needs(code);
  command.Word("--out", options->OutFile,
               "Write what would be sent to this file as mode2 text; - for standard output");
  command.Number("--pulse", options->Pulse, "Length of a slot, microseconds, in place of SENDPLS",
                 {1, kLongestSlot});
  command.Number("--count", options->Count, "How often the key is pressed", {1, 1000});
  AddAppPathOption(command, options->AppPath);
  command.Runs([options, name, code] {
    if (!name.IsGiven() && !code.IsGiven()) {
      throw WrongUse("PROTOCOL and COMMAND, or --code and --protocol is required");
    }
    return Send(*options);
  });
}

}  // namespace keplo::cli
