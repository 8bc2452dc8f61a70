#include <QApplication>
#include <QIcon>
#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "install/first_install.h"
#include "keplo_mod.h"
#include "line/open_line.h"
#include "program/app_path.h"
#include "program/arguments.h"
#include "program/environment.h"
#include "program/exit_codes.h"
#include "program/line_options.h"
#include "program/stop_signals.h"
#include "qt/form1_view.h"
#include "qt/qt_boxes.h"
#include "window/dialogue.h"
#include "window_program/one_window.h"

namespace keplo {

namespace {

constexpr int kKeptPresses = 300;         // captures; a calibration takes 72 at most
constexpr std::chrono::seconds kCare{1};  // between checks whether the device was unplugged or plugged in
constexpr std::chrono::milliseconds kCloseAgain{100};  // closing a box may open another one

/// Closes the window properly when a signal arrives, so that the settings of the port are restored.
class CloseBySignal {
 public:
  explicit CloseBySignal(OneWindow& here) {
    again_.callOnTimeout(&QApplication::closeAllWindows);
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this, &here] {
      if (signals_.Take() == 0) return;
      here.StopAnswering();
      again_.start(kCloseAgain);
    });
  }

 private:
  StopSignals signals_{EndingSignals()};
  QSocketNotifier notifier_{signals_.Descriptor(), QSocketNotifier::Read};
  QTimer again_;
};

struct WindowOptions {
  std::string AppPath;
  bool KeepPressed = false;
  LineSpec Line;
};

void AddOptions(Command command, WindowOptions& options) {
  AddAppPathOption(command, options.AppPath);
  const Argument replay = command.Words("--replay", options.Line.ReplayFiles,
                                        "Recordings to play as key presses, one each time Record waits");
  AddPortOption(command, options.Line.Port).Excludes(replay);
  command.Flag("--real-time", options.Line.InRealTime,
               "Play at the clock of the recordings, not as fast as possible");
  command.Flag("--keep-pressed", options.KeepPressed,
               "The key of the last recording stays pressed, as AutoCalibrate needs it");
  command.Numbers("--ports", options.Line.Ports, "The serial ports that are there, such as 1,2,12; else all",
                  {1, 255});
  AddLineOptions(command, options.Line.Options.SampleTime, options.Line.Options.Shape,
                 options.Line.Options.HoldMs);
}

int RunWindow(const WindowOptions& options, ui::Boxes& boxes) {
  const std::filesystem::path appPath = ResolveAppPath(options.AppPath);
  try {
    CompleteInstall(appPath);
  } catch (const std::exception& failure) {
    boxes.Error(failure.what(), kBoxTitle, {});
    return kNotWritten;
  }
  OneWindow here(appPath);
  if (!here.Ours() && here.RaiseOther()) return kDone;
  if (!here.Ours() && !here.WaitForOther()) {
    boxes.Message("A window for " + appPath.string() +
                      " is open already. Use that one, or close it first. If there is none, delete " +
                      here.LockPath() + ".",
                  kBoxTitle);
    return kNoResult;
  }
  QApplication::setWindowIcon(QIcon(QString::fromStdString((appPath / "inkeplo.ico").string())));
  KeploMod mod(appPath);
  LineSpec spec = options.Line;
  spec.Options.ReadBy = &mod.Settings.Analysis;
  if (options.KeepPressed) spec.HeldCaptures = kKeptPresses;
  spec.PortOfSettings = &mod.Settings.ComPortNr;
  Form1* window = nullptr;
  const OpenedLine line = OpenLine(spec, appPath, mod.Settings.ReceiverKind, [&](const std::string& text) {
    if (window != nullptr) window->Note.SetText(text);
  });
  const CloseBySignal closing(here);
  Form1 form(mod, *line.Line, boxes);
  form.DescribeLine = line.Describe;
  window = &form;
  QTimer care;
  if (line.Device != nullptr) {
    care.callOnTimeout([&line] { line.Device->LookAfterDevice(); });
    care.start(kCare);
  }
  const bool shown = qt::ShowUntilHidden(form);
  window = nullptr;
  if (shown) return kDone;
  std::cerr << "keplo-window: " << form.LoadFailure() << '\n';
  return kUsageError;
}

int RunProgram(int argc, char** argv) {
  IgnoreFileSizeSignal();
  CommandLine line("keplo-window", VersionText,
                   "Records, explains, stores and sends the commands of infrared remotes.");
  WindowOptions options;
  AddOptions(line.Root(), options);
  if (const auto status = line.Parse(argc, argv)) {
    if (std::cout.flush()) return *status;
    std::cerr << "keplo-window: the output cannot be written; is the disk full, or the reader gone?\n";
    return kNotWritten;
  }
  if (!HasDisplay()) {
    std::cerr << "keplo-window: there is no display to show a window on; set DISPLAY, or use keplo\n";
    return kUsageError;
  }
  const QApplication application(argc, argv);
  QApplication::setDesktopFileName(QStringLiteral("keplo-window"));
  qt::QtBoxes boxes;
  try {
    return RunWindow(options, boxes);
  } catch (const std::exception& error) {
    boxes.Error(error.what(), kBoxTitle, {});
    return kUsageError;
  }
}

}  // namespace

}  // namespace keplo

int main(int argc, char** argv) { return keplo::RunProgram(argc, argv); }
