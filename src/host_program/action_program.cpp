#include "host_program/action_program.h"

#include <signal.h>
#include <unistd.h>

#include <QProcessEnvironment>
#include <QStringList>
#include <chrono>

#include "host_program/process_group.h"

namespace keplo::host {

namespace {

/// How often the host looks whether a group without its first process is still there, and once it has been
/// told to end. The number of a group that has gone is given out again, but not that soon.
constexpr std::chrono::milliseconds kBetweenLooks{2000}, kBetweenLooksAtEnd{100};

/// The host holds and catches signals; its children are to have them as usual.
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
  look_.setInterval(kBetweenLooks);
  connect(&look_, &QTimer::timeout, this, &ActionProgram::LookAtGroup);
  connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) TellFailedStart();
  });
  connect(&process_, &QProcess::finished, this, &ActionProgram::TellEnd);
}

void ActionProgram::Start() {
  LoggedOutput& output = *output_;  // which somebody else has already if the start fails at once
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
  look_.setInterval(kBetweenLooksAtEnd);
  if (group_ == 0 || kill(-group_, number) == 0 || process_.state() == QProcess::NotRunning) return;
  kill(group_, number);  // the program has not made its group yet
}

void ActionProgram::TellFailedStart() {
  log_(LogLevel::Warning, Name() + " cannot be started: " + process_.errorString().toStdString());
  output_->Pipe().CloseWriteEnd();  // or it would wait for its own end
  output_->Pipe().Drain();
  Finish();
}

void ActionProgram::TellEnd(int status, QProcess::ExitStatus how) {
  const bool whole = !IsAlive(group_);
  output_->Pipe().Drain();
  if (how != QProcess::NormalExit) {
    log_(LogLevel::Notice, Name() + " was killed");
  } else if (status != 0) {
    log_(LogLevel::Notice, Name() + " ended with status " + std::to_string(status));
  }
  if (whole) return Finish();
  look_.start();
}

void ActionProgram::LookAtGroup() {
  if (IsAlive(group_)) return;
  output_->Pipe().Drain();
  Finish();
}

void ActionProgram::Finish() {
  group_ = 0;
  look_.stop();
  if (OnEnd) OnEnd();
}

}  // namespace keplo::host
