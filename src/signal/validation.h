#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "signal/analysis_choice.h"

namespace keplo {

/// What a recorded code turned out to be.
enum class Verdict {
  Known,        // a stored command
  Validated,    // new, and seen twice: it may be saved
  NotValidated  // new, and seen once
};

/// Whether the code on screen may be saved: a code must have been seen twice, as equal frames of one press or
/// in two presses with the same result.
struct Validation {
  bool CmdValidated = false;
  std::int16_t ValidationStep = 0;    // 1 while a first press waits for its second
  std::string PendingCode;            // the code of that first press
  std::string PendingPlace;           // where its recording was read from; empty for a key press
  Analysis ReadBy = Analysis::First;  // the analysis that the last code comes from
};

/// A press to be validated.
struct ValidatedPress {
  std::string_view Code;        // digits without the leading G, RC5 with 0 for the toggle digit
  std::string_view Place = {};  // where its recording was read from; empty for a key press
};

/// Takes the next recorded press into account. A recording that is read again is no second press.
/// @param repeats its frames are equal
/// @param known it is stored already
Verdict Validate(Validation& validation, const ValidatedPress& press, bool repeats, bool known);

}  // namespace keplo
