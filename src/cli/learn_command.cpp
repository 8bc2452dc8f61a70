#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_install.h"
#include "cli/press_table.h"
#include "cli/reference.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "config/protocol_edit.h"
#include "config/raw_lookup.h"
#include "config/read_settings.h"
#include "formats/recording.h"
#include "line/press_capture.h"
#include "program/app_path.h"
#include "program/line_options.h"
#include "program/printable.h"
#include "remotes/heard_code.h"
#include "signal/recorded_press.h"
#include "signal/sample_time.h"
#include "signal/stage_text.h"
#include "signal/validation.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

struct LearnOptions {
  std::vector<std::string> Files;
  std::string Protocol, Name, AppPath;
  bool Raw = false;
  LineOptions Line;
};

/// The presses to learn, taken together.
struct HeardKey {
  RecordReading Last;
  std::set<std::string> Codes;  // of all presses
  keplo::Validation Validation;
  bool IsConfirmed = false;  // the code was confirmed by any of the presses
  bool IsReadAgain = false;  // the monitor reads the code as well
  bool Known = false;
  RawLesson Raw;
  std::optional<FoundCommand> LikeRaw;  // a raw command that one of the presses fits
  bool IsClean = true;                  // all presses could be stored as lengths
};

/// Whether the remote itself sent the code twice. Frames that are only repeated to simulate a held key do not
/// count.
bool SentTwice(const Press& press, LineOptions line, const std::string& code, Analysis analysis) {
  line.HoldMs = 0;
  SignalState state;
  state.SampleTime = line.SampleTime;
  const RecordReading recorded =
      ReadRecordedCapture(CaptureOfPress(press, kRecordCaptureBytes, line), state, analysis);
  return recorded.Repeats && recorded.Code == code;
}

/// Adds the lengths of a press, as recorded and as the monitor will receive it, without simulated repeats.
void HearRaw(const Press& press, const std::string& place, LineOptions line, const CfgStore& store,
             HeardKey& key) {
  line.HoldMs = 0;
  SignalState state;
  state.RawCapture = CaptureOfPress(press, kRecordCaptureBytes, line);
  TrimRecording(state.RawCapture);
  state.SampleTime = line.SampleTime;
  state.Samples.Read(state.RawCapture);
  key.IsClean = key.Raw.Hear(HeardIn(state), place) && key.IsClean;
  if (line.KeepsFrames() && !key.LikeRaw) key.LikeRaw = FindRawCommand(store, state);
}

bool IsHeardByMonitor(const Press& press, LineOptions line, const CfgStore& store,
                      const RecordReading& read) {
  Settings settings;
  ReadSettings(store, settings);
  if (settings.Analysis == Analysis::First) return true;
  line.SampleTime = SampleTimeOf(settings.ProcDelay);
  return IsReadByMonitor(CaptureOfPress(press, kRecordCaptureBytes, line), read.Code, line.SampleTime);
}

HeardKey ReadPresses(const LearnOptions& options, CfgStore& store, Analysis analysis) {
  HeardKey key;
  LineOptions line = options.Line;
  line.ReadBy = &analysis;
  for (const std::string& file : options.Files) {
    std::error_code unknown;  // then the path is used as it is
    const std::filesystem::path path = std::filesystem::canonical(file, unknown);
    int number = 0;  // of the press in its file
    const Recording recording = LoadRecording(file);
    for (const std::string& complaint : recording.Complaints) Tell(complaint);
    for (const Press& press : recording.Presses) {
      const std::string place = (unknown ? file : path.string()) + " " + std::to_string(++number);
      SignalState state;
      state.SampleTime = line.SampleTime;
      HearRaw(press, place, line, store, key);
      key.Last = ReadRecordedCapture(CaptureOfPress(press, kRecordCaptureBytes, line), state, analysis);
      if (!WhyNoCode(key.Last).empty()) continue;
      const std::string& code = key.Last.Code;
      key.Codes.insert(code);
      key.Known = LookupCommand(store, code, key.Last.ProtoKind, key.Last.ReadBy);
      Validate(key.Validation, {code, place}, SentTwice(press, line, code, analysis), key.Known);
      key.IsConfirmed = key.IsConfirmed || key.Validation.CmdValidated;
      key.IsReadAgain = key.IsReadAgain || IsHeardByMonitor(press, line, store, key.Last);
    }
  }
  return key;
}

/// Whether a digit or two toggle from press to press: two codes that hardly differ alternate. Two keys of a
/// remote may be as similar, but would not be pressed alternately.
bool HasTogglingCode(const HeardKey& key) {
  constexpr int kMostToggles = 2;
  if (key.Codes.size() != 2 || key.Raw.Forms().size() != 2 || !key.Raw.AreTurns()) return false;
  const std::string &code = *key.Codes.begin(), &other = *key.Codes.rbegin();
  if (code.size() != other.size()) return false;
  int differ = 0;
  for (std::size_t i = 0; i < code.size(); ++i) differ += code[i] != other[i] ? 1 : 0;
  return differ <= kMostToggles;
}

/// Why the presses cannot be learned as one command, for the user; empty if they can.
std::string WhyNoCommand(const HeardKey& key) {
  if (const std::string reason = WhyNoCode(key.Last); !reason.empty()) return "no code: " + reason;
  if (key.Codes.size() < 2) return {};
  std::string codes;
  for (const std::string& code : key.Codes) codes += " G" + code;
  return "the presses have different codes, and a command has one; give presses of the same key, or four in "
         "a row of a remote that takes turns:" +
         codes;
}

void Store(const CommandReference& reference, const HeardKey& key, CfgStore& store) {
  Require(CheckProtocol(reference.Protocol));
  if (key.LikeRaw && !key.Known) {
    throw Refused(RefusalText({Refusal::CodeExists, key.LikeRaw->Command}),
                  {"It is a raw command of the protocol " + key.LikeRaw->Protocol +
                   ", which would be heard no more. Delete that one first to store the code."});
  }
  // A known code needs no confirmation, because AddCommand will refuse it.
  if (!key.IsConfirmed && !key.Known) {
    throw Refused(RefusalText({Refusal::NotValidated, {}}),
                  {"the press has a single frame; give recordings of two equal presses"});
  }
  const std::string code = "G" + key.Last.Code;
  const LearnResult result =
      AddCommand(store, reference.Protocol, code, reference.Command, key.Last.ReadBy, key.Last.SendAs);
  if (!result.Done()) throw Refused(WhyNotLearned(store.CfgText, result, code, key.Last.ReadBy));
}

/// Warns if a section, which can store any code, cannot send this one.
void WarnIfSentDifferently(std::string_view text, const std::string& protocol,
                           const RecordReading& read) try {
  const std::optional<ProtocolDraft> draft = LoadProtocol(text, protocol);
  if (read.ReadBy == Analysis::First || !draft) return;
  if (KindHeard({draft->ProtoKind, draft->Params}, read.Code) == read.ProtoKind) return;
  Tell("what [" + protocol +
       "] sends for it is not heard as this code; to send it, learn it in a protocol of its own kind");
} catch (const Failure& unsendable) {
  Tell(unsendable.what());
}

/// Why the presses cannot be learned as lengths, for the user; empty if they can.
std::string WhyNoRawCommand(const HeardKey& key) {
  constexpr std::size_t kMostForms = 4;  // if one or two digits change from press to press
  if (!key.IsClean)
    return "the presses are no clean signals of a few lengths each, which could be stored as raw";
  const std::vector<RawLesson::Form>& forms = key.Raw.Forms();
  if (forms.size() > kMostForms || !key.Raw.AreAlike()) {
    return "the presses have different lengths, and a command has one signal; give presses of the same key";
  }
  return {};
}

/// Whether there are enough presses for a raw command.
bool IsRawConfirmed(const RawLesson& lesson) {
  const std::vector<RawLesson::Form>& forms = lesson.Forms();
  return forms.size() == 1 ? forms.front().IsConfirmed() : lesson.AreTurns();
}

/// Whether to store the lengths even without --raw: if the monitor would not read a code from any of the
/// presses, or if the lengths confirm each other and the codes do not.
bool PrefersRaw(const HeardKey& key) {
  if (!key.IsClean) return false;
  if (!key.IsReadAgain || HasTogglingCode(key)) return true;
  const bool isUnproven = !WhyNoCode(key.Last).empty() || (!key.IsConfirmed && !key.Known);
  return key.Codes.size() < 2 && isUnproven && WhyNoRawCommand(key).empty() && IsRawConfirmed(key.Raw);
}

/// What to do about presses that cannot be learned as a code.
std::vector<std::string> AdviceOn(const HeardKey& key, Analysis analysis, const std::string& appPath) {
  if (!key.IsClean || !WhyNoRawCommand(key).empty()) return {};
  if (analysis == Analysis::Second) return {"With --raw the lengths of such presses are stored."};
  return {"The second look can read it or learn its lengths: " +
          TypedCommand("settings ANALYSIS 1", appPath)};
}

void StoreRaw(const CommandReference& reference, const HeardKey& key, CfgStore& store, RawSignal& signal) {
  Require(CheckProtocol(reference.Protocol));
  const std::vector<RawLesson::Form>& forms = key.Raw.Forms();
  signal = MakeRawSignal(store.CfgText, forms);
  const bool isNew = !FindSimilarRawCommand(store, signal);
  if (isNew && !IsRawConfirmed(key.Raw)) {
    throw Refused(
        RefusalText({Refusal::NotValidated, {}}),
        {forms.size() == 1 ? "give recordings of two presses"
                           : "the presses differ; give two of each in turns, if all are of the same key"});
  }
  const LearnResult result = AddRawCommand(store, reference.Protocol, signal, reference.Command);
  if (result.Refused == Refusal::CodeExists) throw Refused(RefusalText(result), {result.Reason});
  Require(result);
}

/// The name may include the protocol, as in "NEC&POWER".
CommandReference WantedReference(const LearnOptions& options) {
  if (!options.Protocol.empty()) return {options.Protocol, options.Name};
  if (auto both = SplitReference(options.Name)) return *std::move(both);
  throw UsageError("--protocol is required");
}

int LearnRaw(CommandReference reference, const HeardKey& key, OpenedConfig& config) {
  if (const std::string reason = WhyNoRawCommand(key); !reason.empty()) throw Refused(reason);
  RawSignal signal;
  config.Change([&](CfgStore& store) {
    reference.Protocol = ProtocolAsStored(store.CfgText, reference.Protocol);
    StoreRaw(reference, key, store, signal);
    reference = AsStored(store.CfgText, reference);
  });
  std::cout << Printable(reference.Text()) << " learned as raw: G" << signal.Digits << ", "
            << signal.Forms.front().size() << " lengths";
  if (signal.Forms.size() > 1) {
    std::cout << "; the remote sends " << signal.Forms.size() << " forms in turn, which are all stored";
  }
  if (!key.Codes.empty() && !key.IsReadAgain) std::cout << "; the monitor does not read its code";
  if (!IsHeardAsRaw(config.Mod.Store.Raw.Index, signal)) std::cout << "; " << kNotHeardAsRaw;
  std::cout << '\n';
  return kDone;
}

int Learn(const LearnOptions& options) {
  CommandReference reference = WantedReference(options);
  OpenedConfig config(options.AppPath);
  config.RequireWhole();
  const HeardKey key = ReadPresses(options, config.Mod.Store, AnalysisOf(config));
  const bool asRaw = options.Raw || PrefersRaw(key);
  if (asRaw && AnalysisOf(config) == Analysis::Second) return LearnRaw(reference, key, config);
  if (options.Raw) {
    throw Refused("Raw commands are heard with the second look alone; " +
                  TypedCommand("settings ANALYSIS 1", options.AppPath) + " turns it on");
  }
  if (const std::string reason = WhyNoCommand(key); !reason.empty())
    throw Refused(reason, AdviceOn(key, AnalysisOf(config), options.AppPath));
  config.Change([&](CfgStore& store) {
    reference.Protocol = ProtocolAsStored(store.CfgText, reference.Protocol);
    Store(reference, key, store);
    reference = AsStored(store.CfgText, reference);
  });
  std::cout << Printable(reference.Text()) << " learned: G" << key.Last.Code << '\n';
  WarnIfSentDifferently(config.Text(), reference.Protocol, key.Last);
  return kDone;
}

}  // namespace

void AddLearnCommand(Command& root) {
  Command command = root.Sub("learn", "Store the code of recorded key presses as a new command");
  const auto options = std::make_shared<LearnOptions>();
  command.Words("FILE", options->Files, "Recordings of the key; two presses where it sends one frame")
      .Required();
  command.Word("--protocol", options->Protocol, "Section of keplo.cfg that takes the command");
  command
      .Word("--name", options->Name, "Name of the command: letters, digits, - and _; or both as 'NEC&POWER'")
      .Required();
  command.Flag("--raw", options->Raw,
               "Store the lengths of the signal, whatever code it has; without this of signals without one");
  AddAppPathOption(command, options->AppPath);
  AddLineOptions(command, options->Line.SampleTime, options->Line.Shape, options->Line.HoldMs);
  command.Examples({"keplo learn press.mode2 --name 'SONY&GREEN'",
                    "keplo learn first.mode2 second.mode2 --protocol NEC --name GREEN"});
  command.Runs([options] { return Learn(*options); });
}

}  // namespace keplo::cli
