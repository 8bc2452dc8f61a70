#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "host/component_entry.h"

namespace keplo::host {

/// Makes log lines of what a program writes, within limits: neither a line without an end nor a program that
/// never stops writing may fill memory or log. Whatever is left out is told.
class ProgramOutput {
 public:
  static constexpr std::size_t kMostLineBytes = 4096;
  static constexpr std::size_t kMostBytes = 65536;  // logged of one program
  static constexpr std::size_t kMostLines = 1000;

  /// @param program as it is called in what is told about it
  /// @param write takes a line without its end
  ProgramOutput(std::string program, std::function<void(LogLevel, const std::string& line)> write)
      : program_(std::move(program)), write_(std::move(write)) {}

  const std::string& Program() const { return program_; }

  /// Logs the lines that the bytes complete.
  void Take(std::string_view bytes);
  /// Logs what is left of a last line without an end, and how much was left out.
  void End();

 private:
  void Append(std::string_view part);
  void EndLine();

  std::string program_;
  std::function<void(LogLevel, const std::string& line)> write_;
  std::string line_;
  std::size_t lineBytes_ = 0;  // of the present line, logged or not
  std::size_t lines_ = 0, bytes_ = 0;
  std::size_t leftOut_ = 0;
};

}  // namespace keplo::host
