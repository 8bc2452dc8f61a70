#include "host_program/action_program.h"

#include <signal.h>
#include <unistd.h>

#include <QProcessEnvironment>
#include <QStringList>
#include <chrono>

#include "host_program/process_group.h"

namespace keplo::host {

namespace {

/// How often to check whether a group whose first process has ended still exists, before and after it was
/// signalled. The system reuses group numbers, but not this soon.
constexpr std::chrono::milliseconds kPollTime{2000}, kPollTimeAtEnd{100};

/// Restores the default signal mask, which the host has changed.
void BeginGroup() {
  setpgid(0, 0);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

QStringList Words(const std::vector<std::string>& texts) {
  QStringList words;
  for (const std::string& text : texts) words << QString::fromStdString(text);
  return words;
}

}  // namespace

ActionProgram::ActionProgram(const ProgramCall& call, const RaisedEvent& event, const HostLog& log)
    : log_([&log, prefix = "Event " + event.EventID + ": "](LogLevel level, const std::string& text) {
        log.Write(level, prefix + text);
      }),
      output_(std::make_unique<LoggedOutput>(call.Program, log_)) {
  process_.setProgram(QString::fromStdString(call.Program));
  process_.setArguments(Words(call.Arguments));
  process_.setStandardInputFile(QProcess::nullDevice());
  process_.setProcessChannelMode(QProcess::ForwardedChannels);
  process_.setChildProcessModifier([this] {
    output_->Pipe().BecomeOutput();
    BeginGroup();
  });
  SetEnvironment(event);
  poll_.setInterval(kPollTime);
  connect(&poll_, &QTimer::timeout, this, &ActionProgram::CheckGroup);
  connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) HandleFailedStart();
  });
  connect(&process_, &QProcess::finished, this, &ActionProgram::HandleEnd);
}

void ActionProgram::Start() {
  LoggedOutput& output = *output_;  // OnEnd may take output_ if the start fails at once
  process_.start();
  output.Pipe().CloseWriteEnd();
  group_ = static_cast<pid_t>(process_.processId());
}

ActionProgram::~ActionProgram() {
  process_.disconnect(this);
  Signal(SIGKILL);
  process_.waitForFinished();
}

void ActionProgram::SetEnvironment(const RaisedEvent& event) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  const auto set = [&](const char* name, const std::string& value) {
    environment.insert(QString::fromLatin1(name), QString::fromStdString(value));
  };
  set("KEPLO_EVENT_ID", event.EventID);
  set("KEPLO_EVENT_NAME", event.EventName);
  set("KEPLO_EVENT_DESCRIPTION", event.EventDescription);
  set("KEPLO_COMMAND", event.Command);
  set("KEPLO_ZONE", std::to_string(event.Zone));
  set("KEPLO_TIME", event.Time);
  process_.setProcessEnvironment(environment);
}

void ActionProgram::Signal(int number) {
  poll_.setInterval(kPollTimeAtEnd);
  if (group_ == 0 || kill(-group_, number) == 0 || process_.state() == QProcess::NotRunning) return;
  kill(group_, number);  // the program has not created its group yet
}

void ActionProgram::HandleFailedStart() {
  log_(LogLevel::Warning, Name() + " cannot be started: " + process_.errorString().toStdString());
  output_->Pipe().CloseWriteEnd();  // otherwise the pipe would never end
  output_->Pipe().Drain();
  Finish();
}

void ActionProgram::HandleEnd(int status, QProcess::ExitStatus how) {
  const bool allEnded = !IsAlive(group_);
  output_->Pipe().Drain();
  if (how != QProcess::NormalExit) {
    log_(LogLevel::Notice, Name() + " was killed");
  } else if (status != 0) {
    log_(LogLevel::Notice, Name() + " ended with status " + std::to_string(status));
  }
  if (allEnded) return Finish();
  poll_.start();
}

void ActionProgram::CheckGroup() {
  if (IsAlive(group_)) return;
  output_->Pipe().Drain();
  Finish();
}

void ActionProgram::Finish() {
  group_ = 0;
  poll_.stop();
  if (OnEnd) OnEnd();
}

}  // namespace keplo::host
