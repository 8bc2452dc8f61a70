#include "signal/validation.h"

namespace keplo {

namespace {

Verdict ValidateSinglePress(Validation& validation, const ValidatedPress& press) {
  if (validation.ValidationStep == 1) {
    const bool isTheFirst = !press.Place.empty() && press.Place == validation.PendingPlace;
    if (isTheFirst && !validation.CmdValidated) return Verdict::NotValidated;
    validation.CmdValidated = press.Code == validation.PendingCode;
    if (validation.CmdValidated) return Verdict::Validated;
    validation.ValidationStep = 0;
    return Verdict::NotValidated;
  }
  validation.CmdValidated = false;
  validation.ValidationStep = 1;
  validation.PendingCode = press.Code;
  validation.PendingPlace = press.Place;
  return Verdict::NotValidated;
}

}  // namespace

Verdict Validate(Validation& validation, const ValidatedPress& press, bool repeats, bool known) {
  if (known && repeats) return Verdict::Known;
  if (!known && !repeats) return ValidateSinglePress(validation, press);
  validation.CmdValidated = true;
  validation.ValidationStep = 0;
  return known ? Verdict::Known : Verdict::Validated;
}

}  // namespace keplo
