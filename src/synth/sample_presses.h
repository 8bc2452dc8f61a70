#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "synth/synth.h"

namespace keplo {

/// A press of the folder samples/, made by SynthPress.
struct SamplePress {
  std::string_view File;  // without folder
  std::int16_t Kind;      // kNec, kSony or kRc5
  std::string_view Name;  // of the key
  std::string_view Bits;  // as on air
  SynthOptions Options;

  /// Code digits as a command stores them: the bits, with the toggle digit of RC5 written as 0.
  std::string Code() const;
  /// The text of the file.
  std::string Text() const;
};

/// The presses of samples/: keys of one television of each protocol, by different receivers.
std::span<const SamplePress> SamplePresses();

/// The text of samples/index.json, which tells the true bits of every file.
std::string SampleIndex();

}  // namespace keplo
