#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "signal/decode.h"
#include "signal/monitored_press.h"
#include "signal/recorded_press.h"
#include "signal/run_symbols.h"
#include "signal/second_look/second_look.h"

namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

/// A proven frame has a code.
void CheckLook(const keplo::RobustReading& look) {
  Check(look.Symbols.find_first_not_of("01Gg") == std::string::npos);
  Check(look.Symbols.empty() || keplo::kMarks.find(look.Symbols.front()) != std::string_view::npos);
  if (look.Proven != keplo::RobustReading::Proof::Sure &&
      look.Proven != keplo::RobustReading::Proof::Single) {
    Check(look.Frame.empty());
    return;
  }
  // The shortest frame has seven marks; a leader and the closing mark of pulse distance are no digits.
  constexpr std::size_t kFewestDigits = 5;
  Check(look.Frame.find_first_not_of("01") == std::string::npos);
  Check(look.BaseT > 0 && keplo::DecodeCode(look.Frame, look.ProtoKind).size() >= kFewestDigits);
}

}  // namespace

/// Arbitrary bytes as a capture: nothing may go out of bounds, and what is found is of one piece.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view capture(reinterpret_cast<const char*>(data), size);
  keplo::SignalState state;
  state.Samples.Read(capture);
  CheckLook(state.Second.Read(state.Samples, state.Runs.Read(state.Samples)));
  const keplo::MonitorReading heard = keplo::ReadCapture(capture, state, keplo::Analysis::Second);
  Check(heard.Digits.find_first_not_of("01") == std::string::npos);
  keplo::ReadRecordedCapture(capture, state, keplo::Analysis::Second);
  return 0;
}
