#pragma once

#include <string>

#include "host_program/output_pipe.h"
#include "host_program/program_output.h"

namespace keplo::host {

/// Logs the output of a program line by line. A process that has left the program's group, as daemons do, may
/// still hold the pipe long after the program has ended, and would be killed when it writes to a closed pipe.
/// Therefore this object lives until all writers have closed it.
class LoggedOutput {
 public:
  /// @param program name of the program, for messages
  /// @param write receives lines without line ends
  LoggedOutput(std::string program, std::function<void(LogLevel, const std::string& line)> write)
      : lines_(std::move(program), std::move(write)) {}
  /// Logs what is left.
  ~LoggedOutput();
  LoggedOutput(const LoggedOutput&) = delete;
  LoggedOutput& operator=(const LoggedOutput&) = delete;

  const std::string& Program() const { return lines_.Program(); }
  OutputPipe& Pipe() { return pipe_; }
  /// Whether all writers have closed the pipe, and everything has been logged.
  bool HasEnded() const { return ended_; }

 private:
  void End();

  bool ended_ = false;
  ProgramOutput lines_;
  OutputPipe pipe_{[this](std::string_view bytes) { lines_.Take(bytes); }, [this] { End(); }};
};

}  // namespace keplo::host
