#include "host_program/logged_output.h"

#include <utility>

namespace keplo::host {

LoggedOutput::~LoggedOutput() {
  pipe_.Drain();
  End();
}

void LoggedOutput::End() {
  if (!std::exchange(ended_, true)) lines_.End();
}

}  // namespace keplo::host
