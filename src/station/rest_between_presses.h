#pragma once

#include <algorithm>

#include "line/line_rest.h"
#include "shell/keplo.h"

namespace keplo {

/// Limits the rest of a line while a key is held, so that a tick notices its release.
class RestBetweenPresses : public LineRest {
 public:
  RestBetweenPresses(LineRest& line, const Keplo& control) : line_(line), control_(control) {}

  int WakeDescriptor() override { return line_.WakeDescriptor(); }
  std::chrono::milliseconds MayRest() override {
    const std::chrono::milliseconds rest = line_.MayRest();
    const auto release = control_.TimeToRelease();
    return release ? std::min(rest, std::chrono::ceil<std::chrono::milliseconds>(*release)) : rest;
  }
  void Forget() override { line_.Forget(); }
  void LookAfterDevice() override { line_.LookAfterDevice(); }

 private:
  LineRest& line_;
  const Keplo& control_;
};

}  // namespace keplo
