#pragma once

#include <string>

#include "host_program/output_pipe.h"
#include "host_program/program_output.h"

namespace keplo::host {

/// What a program writes, as lines of the log. Whoever has left the program's group, as a daemon does, still
/// holds the pipe when the program itself has long ended, and would be ended by the system if it wrote to a
/// pipe that nobody reads: so this lives until nobody writes any more.
class LoggedOutput {
 public:
  /// @param program as it is called in what is told about it
  /// @param write takes a line without its end
  LoggedOutput(std::string program, std::function<void(LogLevel, const std::string& line)> write)
      : lines_(std::move(program), std::move(write)) {}
  /// Logs what is there still.
  ~LoggedOutput();
  LoggedOutput(const LoggedOutput&) = delete;
  LoggedOutput& operator=(const LoggedOutput&) = delete;

  const std::string& Program() const { return lines_.Program(); }
  OutputPipe& Pipe() { return pipe_; }
  /// Whether nobody writes any more, and all of it is in the log.
  bool HasEnded() const { return ended_; }

 private:
  void End();

  bool ended_ = false;
  ProgramOutput lines_;
  OutputPipe pipe_{[this](std::string_view bytes) { lines_.Take(bytes); }, [this] { End(); }};
};

}  // namespace keplo::host
