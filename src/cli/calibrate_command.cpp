#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/live_line.h"
#include "cli/open_install.h"
#include "config/setting_keys.h"
#include "line/open_line.h"
#include "program/app_path.h"
#include "program/line_options.h"
#include "program/printable.h"
#include "signal/calibration.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

/// Number of captures for which the replayed key is held: ten times what the longest search takes.
constexpr int kHeldCaptures = 1000;

struct CalibrateOptions {
  std::string AppPath;
  bool DryRun = false;
  std::optional<std::int32_t> Port;
  LineSpec Line;
};

/// The result of a calibration.
struct Outcome {
  CalibrationStep End = CalibrationStep::NoSignal;
  std::int16_t Delay = 0;
  int Signals = 0;   // number of signals received
  int Measured = 0;  // number of those with a base time
};

std::string MeasurementText(std::int16_t delay, std::optional<std::int16_t> baseT) {
  return "delay " + std::to_string(delay) + ": " +
         (baseT ? "base time " + std::to_string(*baseT) : std::string("no base time"));
}

Outcome Calibrate(Win32Ser& line) {
  SignalState signal;
  Outcome outcome;
  Calibration calibration(line, signal, outcome.Delay);
  std::string printed;
  while (true) {
    const std::int16_t delay = outcome.Delay;
    outcome.End = calibration.Measure();
    if (outcome.End == CalibrationStep::NoSignal) return outcome;
    ++outcome.Signals;
    if (calibration.BaseT()) ++outcome.Measured;
    const std::string text = MeasurementText(delay, calibration.BaseT());
    if (text != printed) std::cout << text << std::endl;
    printed = text;
    if (outcome.End != CalibrationStep::Measure) return outcome;
  }
}

/// Why there is no result although the key was released, for the user; empty for any other end.
std::string ReasonForNoResult(const Outcome& outcome, const std::string& appPathOption) {
  if (outcome.Signals == 0) {
    return "no signal was heard; " + TypedCommand("ports --watch", appPathOption) + " shows the line itself";
  }
  if (outcome.End != CalibrationStep::NoSignal) return {};
  const std::string signals =
      std::to_string(outcome.Signals) + (outcome.Signals == 1 ? " signal" : " signals");
  if (outcome.Measured == 0) {
    return "none of " + signals +
           " had a base time; hold the key 1 of a SONY remote, or use a recording of it with a sample time "
           "near 55 microseconds";
  }
  return "the key was let go after " + signals + " at delay " + std::to_string(outcome.Delay) +
         ", where no signal took the search on";
}

void Save(std::int16_t delay, const CalibrateOptions& options) {
  OpenedConfig config(options.AppPath);
  config.Change([&](CfgStore& store) {
    if (ChangeSetting(store, *FindSettingKey("PROCDELAY"), delay)) return;
    throw Refused(store.Path.string() + ": there is no PROCDELAY= to set; nothing was saved");
  });
  std::cout << "saved in " << Printable(config.Mod.Store.Path.string()) << '\n';
}

Outcome CalibrateReplayed(const CalibrateOptions& options) {
  const std::int16_t receiver = 0;  // makes no difference to a calibration
  return Calibrate(*OpenLine(options.Line, {}, receiver).Line);
}

Outcome CalibrateLive(const CalibrateOptions& options) {
  OpenedConfig config(options.AppPath);
  LiveLine live(config.Mod, options.Port, options.Line.Options);
  Tell("hold down the key 1 of a SONY remote at " + live.Name() + ", and let it go when the result is told");
  return Calibrate(live.Line());
}

int Calibrate(const CalibrateOptions& options) {
  // Checked first, so that the user does not hold the key in vain.
  if (!options.DryRun) OpenedConfig(options.AppPath).RequireWhole();
  const Outcome outcome =
      options.Line.ReplayFiles.empty() ? CalibrateLive(options) : CalibrateReplayed(options);
  std::vector<std::string> lines = PrintableLines(CalibrationText(outcome.End, outcome.Delay));
  if (outcome.End != CalibrationStep::Succeeded) {
    if (const std::string why = ReasonForNoResult(outcome, options.AppPath); !why.empty())
      lines.push_back(why);
    throw Refused(lines.front(), {lines.begin() + 1, lines.end()});
  }
  for (const std::string& line : lines) std::cout << line << '\n';
  if (!options.DryRun) Save(outcome.Delay, options);
  return kDone;
}

}  // namespace

void AddCalibrateCommand(Command& root) {
  Command command =
      root.Sub("calibrate", "Find the delay at which a held key has its base time, and save it as PROCDELAY");
  const auto options = std::make_shared<CalibrateOptions>();
  const Argument replay =
      command.Words("--replay", options->Line.ReplayFiles,
                    "Recordings of a SONY remote to use in place of the line; the key of the last press is "
                    "held down");
  AddPortOption(command, options->Port).Excludes(replay);
  command.Flag("--dry-run", options->DryRun, "Save nothing");
  AddAppPathOption(command, options->AppPath);
  AddLineOptions(command, options->Line.Options.SampleTime, options->Line.Options.Shape,
                 options->Line.Options.HoldMs);
  command.Examples({"keplo calibrate", "keplo calibrate --replay samples/sony_tv_1.mode2 --dry-run"});
  options->Line.HeldCaptures = kHeldCaptures;
  command.Runs([options] { return Calibrate(*options); });
}

}  // namespace keplo::cli
