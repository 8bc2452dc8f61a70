#pragma once

#include <QObject>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "host_program/host_log.h"

class QProcess;

namespace keplo::host {

/// Does what an event asks for. There are two kinds of action:
///
///     {"kind": "run", "program": "lamp", "arguments": ["on"]}    starts a program, without a shell
///     {"kind": "shell", "command": "lamp on >> log"}             hands a line to /bin/sh
///
/// Programs find the event in their environment: KEPLO_EVENT_ID, KEPLO_EVENT_NAME, KEPLO_EVENT_DESCRIPTION,
/// KEPLO_COMMAND, KEPLO_ZONE and KEPLO_TIME. Their standard input is empty, their output goes to the host's
/// standard error, line by line. None is waited for.
class EventActions : public QObject {
 public:
  /// Programs that may run at the same time; a key that is held must not fill the machine with hung ones.
  static constexpr int kMostPrograms = 32;
  /// Longest line of a program that is logged as one, bytes; what a program writes without line ends must not
  /// fill the memory.
  static constexpr int kMostLineBytes = 4096;

  explicit EventActions(const HostLog& log);
  ~EventActions() override;

  /// Does the actions of an event in order; one that cannot be done is logged and the next follows.
  void Do(const nlohmann::json& actions, const RaisedEvent& event);

  int Running() const { return running_; }
  /// Asks the programs that run to end.
  void Terminate();
  /// Ends the programs that still run, and logs each.
  void Kill();
  /// Runs when the last program has ended.
  std::function<void()> AllEnded;

 private:
  struct CommandLine {
    std::string Program;
    std::vector<std::string> Arguments;
  };
  using Kind = std::function<CommandLine(const nlohmann::json& action)>;

  void Start(const CommandLine& command, const RaisedEvent& event);
  void Watch(QProcess& process, const RaisedEvent& event);
  void LogLine(QProcess& process, const std::string& eventID) const;
  void Ended(QProcess& process);

  const HostLog& log_;
  std::map<std::string, Kind> kinds_;
  int running_ = 0;
};

}  // namespace keplo::host
