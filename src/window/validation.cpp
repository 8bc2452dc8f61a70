#include "window/validation.h"

namespace keplo {

namespace {

Verdict ValidateSinglePress(Validation& validation, std::string_view code) {
  if (validation.ValidationStep == 1) {
    validation.CmdValidated = code == validation.PendingCode;
    if (validation.CmdValidated) return Verdict::Validated;
    validation.ValidationStep = 0;
    return Verdict::NotValidated;
  }
  validation.CmdValidated = false;
  validation.ValidationStep = 1;
  validation.PendingCode = code;
  return Verdict::NotValidated;
}

}  // namespace

Verdict Validate(Validation& validation, std::string_view code, bool repeats, bool known) {
  if (known && repeats) return Verdict::Known;
  if (!known && !repeats) return ValidateSinglePress(validation, code);
  validation.CmdValidated = true;
  validation.ValidationStep = 0;
  return known ? Verdict::Known : Verdict::Validated;
}

}  // namespace keplo
