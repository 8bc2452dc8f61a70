#include <CLI/CLI.hpp>
#include <QApplication>
#include <QLockFile>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "disk/posix_file_system.h"
#include "formats/recording.h"
#include "install/first_install.h"
#include "keplo_mod.h"
#include "line/line_clock.h"
#include "line/replay_line.h"
#include "program/app_path.h"
#include "program/line_options.h"
#include "qt/form1_view.h"
#include "qt/qt_boxes.h"

namespace keplo {

namespace {

constexpr int kKeptPresses = 300;  // captures; a calibration takes 72 at most, and nobody can let the key go
constexpr int kDone = 0, kNotStarted = 1, kWrongUse = 2;

struct WindowOptions {
  std::string AppPath;
  std::vector<std::string> Replay;
  bool RealTime = false;
  bool KeepPressed = false;
  std::vector<std::int32_t> Ports;
  LineOptions Line;
};

void AddOptions(CLI::App& app, WindowOptions& options) {
  app.set_version_flag("--version", "keplo-window " + VersionText);
  AddAppPathOption(app, options.AppPath);
  app.add_option("--replay", options.Replay, "Recordings to play as key presses, one each time Record waits");
  app.add_flag("--real-time", options.RealTime,
               "Play at the clock of the recordings, not as fast as possible");
  app.add_flag("--keep-pressed", options.KeepPressed,
               "The key of the last recording stays pressed, as AutoCalibrate needs it");
  app.add_option("--ports", options.Ports, "The serial ports that are there, such as 1,2,12; else all")
      ->delimiter(',')
      ->check(CLI::Range(1, 255));
  AddLineOptions(app, options.Line);
}

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') return true;
  }
  return false;
}

int RunWindow(const WindowOptions& options, ui::Boxes& boxes) {
  const std::filesystem::path appPath = ResolveAppPath(options.AppPath);
  PosixFileSystem files;
  if (!IsSetUp(appPath)) BringFirstInstall(appPath, files);
  const std::string lock = (appPath / "keplo-window.lock").string();
  QLockFile onlyOne(QString::fromStdString(lock));
  onlyOne.setStaleLockTime(0);  // a window may be open for weeks
  if (!onlyOne.tryLock(0) && onlyOne.error() == QLockFile::LockFailedError) {
    boxes.Message("A window for " + appPath.string() +
                      " is open already. Use that one, or close it first. If there is none, delete " + lock +
                      ".",
                  kBoxTitle);
    return kNotStarted;
  }
  std::vector<Recording> recordings;
  for (const std::string& file : options.Replay) recordings.push_back(LoadRecording(file));
  KeploMod mod(appPath, files);
  ReplayLine line(std::move(recordings), mod.Settings.ReceiverKind, options.Line);
  SteadyLineClock clock;
  if (options.RealTime) line.PlayAgainst(clock);
  if (options.KeepPressed) line.HoldLastPress(kKeptPresses);
  line.SetPorts(options.Ports);
  Form1 form(mod, line, boxes);
  if (qt::ShowUntilHidden(form)) return kDone;
  std::cerr << "keplo-window: " << form.WhyNotLoaded() << '\n';
  return kNotStarted;
}

int RunProgram(int argc, char** argv) {
  CLI::App app("Records, explains, stores and sends the commands of infrared remotes.", "keplo-window");
  WindowOptions options;
  AddOptions(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongUse;
  }
  if (!HasDisplay()) {
    std::cerr << "keplo-window: there is no display to show a window on; set DISPLAY, or use keplo\n";
    return kNotStarted;
  }
  const QApplication application(argc, argv);
  qt::QtBoxes boxes;
  try {
    return RunWindow(options, boxes);
  } catch (const std::exception& error) {
    boxes.Error(error.what(), kBoxTitle);
    return kNotStarted;
  }
}

}  // namespace

}  // namespace keplo

int main(int argc, char** argv) { return keplo::RunProgram(argc, argv); }
