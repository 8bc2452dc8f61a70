#include <unistd.h>

#include <QApplication>
#include <QCoreApplication>
#include <QEventLoop>
#include <QMainWindow>
#include <QStatusBar>
#include <QTimer>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>

#include "component_loader/class_file.h"
#include "failure.h"
#include "host_program/action_output.h"
#include "host_program/broker_output.h"
#include "host_program/event_actions.h"
#include "host_program/event_book.h"
#include "host_program/find_component.h"
#include "host_program/host_log.h"
#include "host_program/host_window.h"
#include "host_program/journal_stream.h"
#include "host_program/log_output.h"
#include "host_program/options.h"
#include "host_program/plugin_host.h"
#include "host_program/signal_notifier.h"
#include "host_program/web/web_pages.h"
#include "program/counted.h"
#include "program/environment.h"
#include "program/exit_codes.h"
#include "program/stop_signals.h"

namespace keplo::host {

namespace {

constexpr std::chrono::seconds kTimeForPrograms{5}, kTimeToTerminate{1};

HostLog::JournalStreams JournalStreamsOfThisProgram() {
  const char* journal = std::getenv("JOURNAL_STREAM");
  if (journal == nullptr) return {};
  return {IsJournal(STDOUT_FILENO, journal), IsJournal(STDERR_FILENO, journal)};
}

std::unique_ptr<QCoreApplication> MakeApplication(int& argc, char** argv, bool headless) {
  if (headless) return std::make_unique<QCoreApplication>(argc, argv);
  if (!HasDisplay()) {
    throw Failure(1, "There is no display to show a window on. Run with --headless to do without.");
  }
  QApplication::setDesktopFileName(QStringLiteral("keplo-host"));
  return std::make_unique<QApplication>(argc, argv);
}

class NotWritten : public Failure {
 public:
  using Failure::Failure;
};

template <typename Step>
void Write(Step step) try {
  step();
} catch (const Failure& failure) {
  throw NotWritten(failure.Number(), failure.what());
}

void Register(const HostOptions& options) {
  const Component component(FindComponentToRegister(options.ComponentFile));
  Write([&] { component.Register(); });
  std::cout << kInputKeploClass << " is " << component.File().string() << ", as "
            << ClassFilePath(kInputKeploClass).string() << " says\n";
}

void Unregister(const HostOptions& options) {
  try {
    Component(FindComponentToRegister(options.ComponentFile)).Unregister();
  } catch (const Failure& failure) {
    std::cerr << "keplo-host: " << failure.what() << "\nThe class file is removed all the same.\n";
  }
  Write([] { RemoveClassFile(kInputKeploClass); });
  std::cout << kInputKeploClass << " is no longer registered\n";
}

/// Gives running programs time to end by themselves, then asks them to, and finally kills them. A stop signal
/// ends the current wait.
void EndPrograms(EventActions& actions, SignalNotifier& signals) {
  QEventLoop loop;
  signals.Watch([&loop] { loop.quit(); });
  actions.AllEnded = [&loop] { loop.quit(); };
  const auto wait = [&](std::chrono::seconds time) {
    if (!actions.AnyRuns()) return;
    QTimer timer;
    timer.callOnTimeout(&loop, &QEventLoop::quit);
    timer.start(time);
    loop.exec();
  };
  wait(kTimeForPrograms);
  actions.Terminate();
  wait(kTimeToTerminate);
  actions.Kill();
  actions.AllEnded = nullptr;
  signals.Watch([] {});
}

int StatusOf(const PluginHost& host, const HostOptions& options, const HostLog& log) {
  const auto tally = host.Presses();
  if (!tally || options.Control.ReplayFiles.empty()) return kDone;
  log.Summary(Counted(tally->Presses, "press") + " heard, " + Counted(tally->Events, "event") + " raised, " +
              Counted(tally->WithoutEvent, "press") + " without an event");
  return options.Once && tally->WithoutEvent > 0 ? kNoResult : kDone;
}

/// Without a window, the host is useless without the pages, so a failure ends it; otherwise it is only shown.
void ServePages(WebPages& pages, const HostOptions& options, const HostLog& log, QMainWindow* window) {
  if (!options.HttpPort) return;
  try {
    log.Write(LogLevel::Info,
              "Pages at " + pages.Serve(options.HttpAddress, *options.HttpPort, options.HttpNames));
  } catch (const Failure& failure) {
    if (window == nullptr || failure.Number() == EINVAL) throw;
    log.Write(LogLevel::Warning, failure.what());
    window->statusBar()->showMessage(QString::fromUtf8(failure.what()));
  }
}

int Run(QCoreApplication& application, HostOptions& options, const HostLog& log) {
  EventBook book(options.HostFile);
  const Component component(FindComponent(options.ComponentFile));
  EventActions actions(log);
  CreationContext& context = options.Control;
  context.MayUseDisplay = !options.Headless;
  if (options.Once) context.ReplayPlayed = [&application] { application.quit(); };

  LogOutput logOutput(log);
  ActionOutput actionOutput(book, actions, log);
  PluginHost host(component, context, book, log, {&logOutput, &actionOutput});
  host.Start();
  actionOutput.Prepare();
  BrokerOutput broker(options.Control.ApplicationPath, host, log);
  SignalNotifier signals([&actionOutput, &broker] {
    actionOutput.Reload();
    broker.Reload();
  });
  signals.Watch([&application] { application.quit(); });
  WebPages pages(host);
  std::unique_ptr<HostWindow> window;
  if (!options.Headless) {
    window = std::make_unique<HostWindow>(host);
    window->show();
  }
  ServePages(pages, options, log, window.get());
  application.exec();
  host.Stop();
  EndPrograms(actions, signals);
  return StatusOf(host, options, log);
}

int RunTask(int& argc, char** argv, HostOptions& options) try {
  if (options.ToDo != Task::Run) {
    options.ToDo == Task::Register ? Register(options) : Unregister(options);
    return kDone;
  }
  const HostLog log(options.Json, JournalStreamsOfThisProgram(), options.Presses);
  try {
    const auto application = MakeApplication(argc, argv, options.Headless);
    return Run(*application, options, log);
  } catch (const ObjectNotWritten& failure) {
    log.Write(LogLevel::Error, failure.what());
    return kNotWritten;
  } catch (const std::exception& failure) {
    log.Write(LogLevel::Error, failure.what());
    return kUsageError;
  }
} catch (const NotWritten& failure) {
  std::cerr << "keplo-host: " << failure.what() << '\n';
  return kNotWritten;
}

/// Makes sure that the output was written.
int StatusWithOutput(int status) {
  if (std::cout.flush()) return status;
  std::cerr << "keplo-host: the output cannot be written; is the disk full, or the reader gone?\n";
  return kNotWritten;
}

}  // namespace

}  // namespace keplo::host

int main(int argc, char** argv) {
  using namespace keplo::host;
  HoldHangups();
  keplo::IgnoreFileSizeSignal();
  try {
    HostOptions options;
    if (const auto status = ReadOptions(argc, argv, options)) return StatusWithOutput(*status);
    return StatusWithOutput(RunTask(argc, argv, options));
  } catch (const std::exception& failure) {
    std::cerr << "keplo-host: " << failure.what() << '\n';
  }
  return keplo::kUsageError;
}
