#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "cli/refuse.h"
#include "config/setting_keys.h"
#include "line/open_line.h"
#include "program/app_path.h"
#include "program/line_options.h"
#include "signal/calibration.h"

namespace keplo::cli {

namespace {

/// Captures for which the replayed key is held; ten times what the longest search takes.
constexpr int kHeldCaptures = 1000;

struct CalibrateOptions {
  std::string AppPath;
  bool DryRun = false;
  LineSpec Line;
};

/// How a calibration on a replay line went.
struct Course {
  CalibrationStep End = CalibrationStep::NoSignal;
  std::int16_t Delay = 0;
  int Signals = 0;  // heard
  int Measured = 0;
};

std::string MeasurementText(std::int16_t delay, std::optional<std::int16_t> baseT) {
  return "delay " + std::to_string(delay) + ": " +
         (baseT ? "base time " + std::to_string(*baseT) : std::string("no base time"));
}

Course Calibrate(Win32Ser& line) {
  SignalState signal;
  Course course;
  Calibration calibration(line, signal, course.Delay);
  std::string told;
  while (true) {
    const std::int16_t delay = course.Delay;
    course.End = calibration.Measure();
    if (course.End == CalibrationStep::NoSignal) return course;
    ++course.Signals;
    if (calibration.BaseT()) ++course.Measured;
    const std::string text = MeasurementText(delay, calibration.BaseT());
    if (text != told) std::cout << text << std::endl;
    told = text;
    if (course.End != CalibrationStep::Measure) return course;
  }
}

/// The sentences of the window, with the line ends of a terminal.
std::string Sentences(const Course& course) {
  std::string text = CalibrationText(course.End, course.Delay);
  text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
  return text;
}

/// Why the replayed key was let go without a result, for a person; empty at any other end.
std::string WhyNoHelp(const Course& course) {
  if (course.End != CalibrationStep::NoSignal) return {};
  const std::string signals = std::to_string(course.Signals) + " signals";
  if (course.Measured == 0) {
    return "none of " + signals +
           " had a base time; give a recording of a SONY remote, and a sample time near 55 microseconds";
  }
  return "the key was let go after " + signals + " at delay " + std::to_string(course.Delay) +
         ", where no signal took the search on";
}

int Save(std::int16_t delay, const CalibrateOptions& options) try {
  OpenConfig config(options.AppPath);
  config.RequireWhole();
  CfgStore& store = config.Mod.Store;
  if (!ChangeSetting(store, *FindSettingKey("PROCDELAY"), delay))
    return Refuse(store.Path.string() + ": there is no PROCDELAY= to set; nothing was saved");
  std::cout << "saved in " << store.Path.string() << '\n';
  return kDone;
} catch (const Failure& failure) {
  return Refuse(failure.what());
}

int Calibrate(const CalibrateOptions& options) {
  // Whoever holds the key should not do so for a file that cannot take the result.
  if (!options.DryRun) OpenConfig(options.AppPath).RequireWhole();
  const std::int16_t receiver = 0;  // calibration captures alike for both
  const OpenedLine line = OpenLine(options.Line, receiver);
  const Course course = Calibrate(*line.Line);
  if (course.End != CalibrationStep::Succeeded) {
    const std::string why = WhyNoHelp(course);
    return Refuse(Sentences(course) + (why.empty() ? "" : "\nkeplo: " + why));
  }
  std::cout << Sentences(course) << '\n';
  if (options.DryRun) return kDone;
  return AmongOthers([&] { return Save(course.Delay, options); });
}

}  // namespace

void AddCalibrateCommand(Command& root) {
  Command command =
      root.Sub("calibrate", "Find the delay at which a held key has its base time, and save it as PROCDELAY");
  const auto options = std::make_shared<CalibrateOptions>();
  command
      .Words("--replay", options->Line.ReplayFiles,
             "Recordings of a SONY remote; the key of the last press is held down")
      .Required();
  command.Flag("--dry-run", options->DryRun, "Save nothing");
  AddAppPathOption(command, options->AppPath);
  AddLineOptions(command, options->Line.Options.SampleTime, options->Line.Options.Shape,
                 options->Line.Options.HoldMs);
  options->Line.HeldCaptures = kHeldCaptures;
  command.Runs([options] { return Calibrate(*options); });
}

}  // namespace keplo::cli
