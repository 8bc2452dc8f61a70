#pragma once

#include <sys/types.h>

#include <QProcess>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host_program/host_log.h"
#include "host_program/logged_output.h"

namespace keplo::host {

/// A program and its arguments.
struct ProgramCall {
  std::string Program;
  std::vector<std::string> Arguments;
};

/// A program started by an event, together with its child processes: they have their own process group, and
/// signals go to all of them. A program that should outlive the host leaves the group, for example with
/// setsid; its output is logged as long as the host runs. Output and failures go to the log.
class ActionProgram : public QObject {
 public:
  ActionProgram(const ProgramCall& call, const RaisedEvent& event, const HostLog& log);
  /// Kills what is still running.
  ~ActionProgram() override;

  void Start();
  std::string Name() const { return process_.program().toStdString(); }
  /// Sends a signal to every process of the group.
  void Signal(int number);
  /// For OnEnd: the output, to which processes outside the group may still be writing.
  std::unique_ptr<LoggedOutput> TakeOutput() { return std::move(output_); }

  /// Runs once, when all processes of the group have ended, or the program cannot be started.
  std::function<void()> OnEnd;

 private:
  void SetEnvironment(const RaisedEvent& event);
  void HandleFailedStart();
  void HandleEnd(int status, QProcess::ExitStatus how);
  /// Checks whether processes that the program has left behind are still running.
  void CheckGroup();
  void Finish();

  const std::function<void(LogLevel, const std::string& text)> log_;
  std::unique_ptr<LoggedOutput> output_;
  QProcess process_;
  pid_t group_ = 0;  // 0 if there is none
  QTimer poll_;
};

}  // namespace keplo::host
