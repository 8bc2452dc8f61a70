#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "cli/analysis_option.h"
#include "cli/commands.h"
#include "cli/open_map.h"
#include "cli/refuse.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "formats/recording.h"
#include "line/press_capture.h"
#include "program/app_path.h"
#include "program/line_options.h"
#include "signal/recorded_press.h"
#include "station/stage_text.h"
#include "window/validation.h"

namespace keplo::cli {

namespace {

struct LearnOptions {
  std::vector<std::string> Files;
  std::string Protocol, Name, AppPath;
  LineOptions Line;
};

/// The last press of some recordings, and what all of them say of it.
struct Lesson {
  RecordReading Last;
  std::set<std::string> Codes;  // of all presses that have one
  keplo::Validation Validation;
  bool Known = false;
};

/// Whether the remote itself sent the code twice: the copies of a frame that is held confirm nothing.
bool SentTwice(const Press& press, LineOptions line, const std::string& code, Analysis analysis) {
  line.HoldMs = 0;
  SignalState state;
  const RecordReading recorded =
      ReadRecordedCapture(CaptureOfPress(press, kRecordCaptureBytes, line), state, analysis);
  return recorded.Repeats && recorded.Code == code;
}

Lesson ReadPresses(const LearnOptions& options, CfgStore& store, Analysis analysis) {
  Lesson lesson;
  for (const std::string& file : options.Files) {
    for (const Press& press : LoadRecording(file).Presses) {
      SignalState state;
      lesson.Last =
          ReadRecordedCapture(CaptureOfPress(press, kRecordCaptureBytes, options.Line), state, analysis);
      if (!WhyNoCode(lesson.Last).empty()) continue;
      const std::string& code = lesson.Last.Code;
      lesson.Codes.insert(code);
      lesson.Known = LookupCommand(store, code, lesson.Last.ProtoKind, lesson.Last.ReadBy);
      Validate(lesson.Validation, code, SentTwice(press, options.Line, code, analysis), lesson.Known);
    }
  }
  return lesson;
}

/// Why the presses cannot be learned as one command, for a person; empty if they can.
std::string WhyNoCommand(const Lesson& lesson) {
  if (const std::string reason = WhyNoCode(lesson.Last); !reason.empty()) return "no code: " + reason;
  if (lesson.Codes.size() < 2) return {};
  std::string codes;
  for (const std::string& code : lesson.Codes) codes += " G" + code;
  return "the presses have different codes, and a command has one; give presses of the same key:" + codes;
}

LearnResult Store(const LearnOptions& options, const Lesson& lesson, CfgStore& store) {
  LearnResult refused = CheckProtocol(options.Protocol);
  if (!refused.Done()) return refused;
  // A known code needs no second press; the checks name the command that has it.
  if (!lesson.Validation.CmdValidated && !lesson.Known) return {Refusal::NotValidated, {}};
  return AddCommand(store, options.Protocol, "G" + lesson.Last.Code, options.Name, lesson.Last.ReadBy);
}

int Learn(const LearnOptions& options) {
  OpenConfig config(options.AppPath);
  config.RequireWhole();
  const Lesson lesson = ReadPresses(options, config.Mod.Store, AnalysisOf(config));
  if (const std::string reason = WhyNoCommand(lesson); !reason.empty()) return Refuse(reason);
  try {
    LearnResult result;
    ChangeAmongOthers(config.Mod.Store, [&] { result = Store(options, lesson, config.Mod.Store); });
    if (result.Refused == Refusal::NotValidated) {
      return Refuse(RefusalText(result) +
                    "\nkeplo: the last press has a single frame; give recordings of two equal presses");
    }
    if (!result.Done()) return Refuse(RefusalText(result));
  } catch (const Failure& failure) {
    return Refuse(failure.what());
  }
  std::cout << options.Protocol << '&' << options.Name << " learned: G" << lesson.Last.Code << '\n';
  return kDone;
}

}  // namespace

void AddLearnCommand(Command& root) {
  Command command = root.Sub("learn", "Store the code of recorded key presses as a new command");
  const auto options = std::make_shared<LearnOptions>();
  command.Words("FILE", options->Files, "Recordings of the key; two presses where it sends one frame")
      .Required();
  command.Word("--protocol", options->Protocol, "Section of keplo.cfg that takes the command").Required();
  command.Word("--name", options->Name, "Name of the command: letters, digits, - and _").Required();
  AddAppPathOption(command, options->AppPath);
  AddLineOptions(command, options->Line.SampleTime, options->Line.Shape, options->Line.HoldMs);
  command.Runs([options] { return Learn(*options); });
}

}  // namespace keplo::cli
