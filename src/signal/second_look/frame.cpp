#include "signal/second_look/frame.h"

#include <algorithm>

#include "signal/decode.h"

namespace keplo::robust {

bool Frame::SameCode(const Frame& other) const {
  if (this == &other) return true;
  if (Shape != other.Shape) return false;
  if (HasLeader() && other.HasLeader() && (Head != other.Head || !Led.IsLike(other.Led))) return false;
  if (Symbols == other.Symbols) return true;
  // Of two taps in one capture.
  return Shape->HasToggle && DecodeCode(Symbols, Kind()) == DecodeCode(other.Symbols, Kind());
}

FrameDigits::FrameDigits(const Frame& frame)
    : size_(static_cast<std::size_t>(WriteDigits(frame.Symbols, frame.Kind(), digits_.data()) -
                                     digits_.data())) {}

bool HasBothDigits(std::string_view digits, std::ptrdiff_t fewest) {
  const auto ones = std::count(digits.begin(), digits.end(), '1');
  return ones >= fewest && std::ssize(digits) - ones >= fewest;
}

}  // namespace keplo::robust
