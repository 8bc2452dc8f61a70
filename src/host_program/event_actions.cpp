#include "host_program/event_actions.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <csignal>

namespace keplo::host {

namespace {

void SetEnvironment(QProcess& process, const RaisedEvent& event) {
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
  process.setProcessEnvironment(environment);
}

/// The host waits for its stop signals with them blocked; its children are to have them as usual.
void UnblockSignals() {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace

EventActions::EventActions(const HostLog& log) : log_(log) {
  kinds_["run"] = [](const nlohmann::json& action) {
    return CommandLine{action.at("program").get<std::string>(),
                       action.value("arguments", std::vector<std::string>())};
  };
  kinds_["shell"] = [](const nlohmann::json& action) {
    return CommandLine{"/bin/sh", {"-c", action.at("command").get<std::string>()}};
  };
}

EventActions::~EventActions() {
  AllEnded = nullptr;
  for (auto* process : findChildren<QProcess*>()) {
    process->disconnect(this);
    process->kill();
    process->waitForFinished();
  }
}

void EventActions::Terminate() {
  for (auto* process : findChildren<QProcess*>()) process->terminate();
}

void EventActions::Kill() {
  for (auto* process : findChildren<QProcess*>()) {
    if (process->state() == QProcess::NotRunning) continue;
    log_.Write(LogLevel::Warning, process->program().toStdString() + " does not end; it is killed.");
    process->kill();
    process->waitForFinished();
  }
}

void EventActions::Do(const nlohmann::json& actions, const RaisedEvent& event) {
  for (const nlohmann::json& action : actions) {
    try {
      const std::string kind = action.at("kind").get<std::string>();
      const auto known = kinds_.find(kind);
      if (known == kinds_.end()) {
        log_.Write(LogLevel::Warning, "Event " + event.EventID + ": there is no kind of action " + kind +
                                          "; known are run and shell.");
        continue;
      }
      Start(known->second(action), event);
    } catch (const nlohmann::json::exception& error) {
      log_.Write(LogLevel::Warning, "Event " + event.EventID + ": the action " + action.dump() +
                                        " is not complete: " + error.what());
    }
  }
}

void EventActions::Start(const CommandLine& command, const RaisedEvent& event) {
  if (running_ >= kMostPrograms) {
    log_.Write(LogLevel::Warning, "Event " + event.EventID + ": " + command.Program +
                                      " was not started, since " + std::to_string(kMostPrograms) +
                                      " programs still run.");
    return;
  }
  auto* process = new QProcess(this);
  SetEnvironment(*process, event);
  process->setStandardInputFile(QProcess::nullDevice());
  process->setProcessChannelMode(QProcess::MergedChannels);
  process->setChildProcessModifier(UnblockSignals);
  Watch(*process, event);
  ++running_;
  QStringList arguments;
  for (const std::string& argument : command.Arguments) arguments << QString::fromStdString(argument);
  process->start(QString::fromStdString(command.Program), arguments, QIODevice::ReadOnly);
}

void EventActions::Watch(QProcess& process, const RaisedEvent& event) {
  const std::string eventID = event.EventID;
  QObject::connect(&process, &QProcess::readyRead, this, [this, &process, eventID] {
    while (process.canReadLine() || process.bytesAvailable() >= kMostLineBytes) LogLine(process, eventID);
  });
  QObject::connect(
      &process, &QProcess::errorOccurred, this, [this, &process, eventID](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart) return;
        log_.Write(LogLevel::Warning, "Event " + eventID + ": " + process.program().toStdString() +
                                          " cannot be started: " + process.errorString().toStdString());
        Ended(process);
      });
  QObject::connect(
      &process, &QProcess::finished, this, [this, &process, eventID](int status, QProcess::ExitStatus how) {
        while (process.bytesAvailable() > 0) LogLine(process, eventID);
        if (how != QProcess::NormalExit || status != 0) {
          log_.Write(LogLevel::Notice,
                     "Event " + eventID + ": " + process.program().toStdString() +
                         (how == QProcess::NormalExit ? " ended with status " + std::to_string(status)
                                                      : " was killed"));
        }
        Ended(process);
      });
}

void EventActions::LogLine(QProcess& process, const std::string& eventID) const {
  const QByteArray line = process.readLine(kMostLineBytes + 1).trimmed();  // Qt counts a closing zero in
  log_.Write(LogLevel::Info, "Event " + eventID + ": " + line.toStdString());
}

void EventActions::Ended(QProcess& process) {
  process.deleteLater();
  --running_;
  if (running_ == 0 && AllEnded) AllEnded();
}

}  // namespace keplo::host
