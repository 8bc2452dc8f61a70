#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "config/learn.h"
#include "failure.h"
#include "program/exit_codes.h"

namespace keplo::cli {

/// Thrown if input gives no result, or the rules do not allow a change.
class Refused : public Failure {
 public:
  /// @param more further lines for the user
  explicit Refused(const std::string& text, std::vector<std::string> more = {})
      : Failure(kNoResult, text), more_(std::move(more)) {}

  const std::vector<std::string>& More() const { return more_; }

 private:
  std::vector<std::string> more_;
};

/// Thrown if something could not be written. The old contents are unchanged, unless the text says otherwise.
class NotWritten : public Failure {
 public:
  using Failure::Failure;
};

/// Runs a function, and turns its failures into NotWritten.
void Write(const std::function<void()>& write);

/// Why a change of the store was refused, with details.
std::string ReasonedText(const LearnResult& result);

/// @throws Refused, with the message of the store, if a change was refused
void Require(const LearnResult& result);

/// Prints a line for the user on standard error.
void Tell(std::string_view text);

/// Runs a command, reports why it failed, and makes sure that its output was written.
/// @return the exit code
int RunToEnd(const std::function<int()>& command);

}  // namespace keplo::cli
