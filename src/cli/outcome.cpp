#include "cli/outcome.h"

#include <exception>
#include <iostream>

#include "program/printable.h"

namespace keplo::cli {

namespace {

int StatusOf(const std::function<int()>& command) try { return command(); } catch (const Refused& refused) {
  Tell(refused.what());
  for (const std::string& line : refused.More()) Tell(line);
  return kNoResult;
} catch (const NotWritten& failure) {
  Tell(failure.what());
  return kNotWritten;
} catch (const std::exception& failure) {
  Tell(failure.what());
  return kUsageError;
}

}  // namespace

void Write(const std::function<void()>& write) try { write(); } catch (const NotWritten&) {
  throw;
} catch (const Failure& failure) {
  throw NotWritten(failure.Number(), failure.what());
}

std::string ReasonedText(const LearnResult& result) {
  return RefusalText(result) + (result.Reason.empty() ? "" : " " + result.Reason);
}

void Require(const LearnResult& result) {
  if (!result.Done()) throw Refused(ReasonedText(result));
}

void Tell(std::string_view text) { std::cerr << "keplo: " << Printable(text) << '\n'; }

int RunToEnd(const std::function<int()>& command) {
  const int status = StatusOf(command);
  if (std::cout.flush()) return status;
  Tell("the output cannot be written; is the disk full, or the reader gone?");
  return kNotWritten;
}

}  // namespace keplo::cli
