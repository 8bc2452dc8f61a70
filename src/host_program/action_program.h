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

/// What a program is started with.
struct ProgramCall {
  std::string Program;
  std::vector<std::string> Arguments;
};

/// A program that an event has started, together with all that it starts itself: they share a process group
/// of their own, which gets each signal whole. A program that is to outlive the host leaves the group, as
/// setsid does; what it writes is logged as long as the host runs. Output and failures go to the log.
class ActionProgram : public QObject {
 public:
  ActionProgram(const ProgramCall& call, const RaisedEvent& event, const HostLog& log);
  /// Ends what still runs.
  ~ActionProgram() override;

  void Start();
  std::string Name() const { return process_.program().toStdString(); }
  /// Sends a signal to every process of the group.
  void Signal(int number);
  /// For OnEnd: the output, which others may still write to.
  std::unique_ptr<LoggedOutput> TakeOutput() { return std::move(output_); }

  /// Runs once, when no process of the group is left or the program cannot be started.
  std::function<void()> OnEnd;

 private:
  void SetEnvironment(const RaisedEvent& event);
  void TellFailedStart();
  void TellEnd(int status, QProcess::ExitStatus how);
  /// Looks whether what the program has left running is still there.
  void LookAtGroup();
  void Finish();

  const std::function<void(LogLevel, const std::string& text)> log_;
  std::unique_ptr<LoggedOutput> output_;
  QProcess process_;
  pid_t group_ = 0;  // 0 as long as there is none
  QTimer look_;
};

}  // namespace keplo::host
