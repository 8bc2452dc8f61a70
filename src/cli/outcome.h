#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "config/learn.h"
#include "failure.h"

namespace keplo::cli {

// Exit codes of every command; the manual has them too.
inline constexpr int kDone = 0;
inline constexpr int kNoResult =
    1;  // a press without a code, a name that is not there, a change that is refused
inline constexpr int kWrongUse = 2;    // wrong use, or input that cannot be read
inline constexpr int kNotWritten = 3;  // keplo.cfg, the event map or output could not be written

/// Input that gives no result, or a change that the rules do not allow.
class Refused : public Failure {
 public:
  /// @param more lines to tell after the first
  explicit Refused(const std::string& text, std::vector<std::string> more = {})
      : Failure(kNoResult, text), more_(std::move(more)) {}

  const std::vector<std::string>& More() const { return more_; }

 private:
  std::vector<std::string> more_;
};

/// What could not be written. What was there before is as it was, unless the text says otherwise.
class NotWritten : public Failure {
 public:
  using Failure::Failure;
};

/// Runs what writes; its failures are told as things that could not be written.
void Write(const std::function<void()>& write);

/// Why a change of the store was refused, with what stands in the way.
std::string ReasonedText(const LearnResult& result);

/// @throws Refused with the sentence of the store unless a command was stored, renamed or deleted
void Require(const LearnResult& result);

/// A line for the user on standard error.
void Tell(std::string_view text);

/// Runs a command, tells why it failed, and sees to it that its output has arrived.
/// @return the exit code
int RunToEnd(const std::function<int()>& command);

}  // namespace keplo::cli
