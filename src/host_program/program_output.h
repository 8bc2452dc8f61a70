#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "host/component_entry.h"

namespace keplo::host {

/// Turns the output of a program into log lines, within limits: neither an endless line nor a program that
/// never stops writing may fill the memory or the log. Omissions are logged.
class ProgramOutput {
 public:
  static constexpr std::size_t kMostLineBytes = 4096;
  static constexpr std::size_t kMostBytes = 65536;  // per program
  static constexpr std::size_t kMostLines = 1000;

  /// @param program name of the program, for messages
  /// @param write receives lines without line ends
  ProgramOutput(std::string program, std::function<void(LogLevel, const std::string& line)> write)
      : program_(std::move(program)), write_(std::move(write)) {}

  const std::string& Program() const { return program_; }

  /// Logs the lines that the bytes complete.
  void Take(std::string_view bytes);
  /// Logs an incomplete last line, and how much was omitted.
  void End();

 private:
  void Append(std::string_view part);
  void EndLine();

  std::string program_;
  std::function<void(LogLevel, const std::string& line)> write_;
  std::string line_;
  std::size_t lineBytes_ = 0;  // length of the current line, logged or not
  std::size_t lines_ = 0, bytes_ = 0;
  std::size_t leftOut_ = 0;
};

}  // namespace keplo::host
