#pragma once

#include <algorithm>

#include "line/line_rest.h"
#include "shell/keplo.h"

namespace keplo {

/// The rest of a line, cut short while a key is held: a tick has to come when it counts as let go.
class RestBetweenPresses : public LineRest {
 public:
  RestBetweenPresses(LineRest& line, const Keplo& control) : line_(line), control_(control) {}

  int WakeDescriptor() override { return line_.WakeDescriptor(); }
  std::chrono::milliseconds MayRest() override {
    const std::chrono::milliseconds rest = line_.MayRest();
    const auto hold = control_.MayHold();
    return hold ? std::min(rest, std::chrono::ceil<std::chrono::milliseconds>(*hold)) : rest;
  }
  void Forget() override { line_.Forget(); }
  void LookAfterDevice() override { line_.LookAfterDevice(); }

 private:
  LineRest& line_;
  const Keplo& control_;
};

}  // namespace keplo
