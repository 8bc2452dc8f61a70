#include "line/lirc/sent_parts.h"

namespace keplo {

namespace {

constexpr std::size_t kMostMarks = 512;
constexpr std::chrono::milliseconds kLongestWrite{490};
/// Up to here the timer that ends a write is as fine as the ticks of the kernel (64 of them, at 250 Hz 256
/// ms).
constexpr std::chrono::milliseconds kFineWrite{200};
constexpr std::chrono::milliseconds kFineLateness{12}, kCoarseLateness{40};

}  // namespace

std::size_t EndOfPart(std::span<const LitSlots> lit, std::size_t first, std::chrono::microseconds slot) {
  const auto length = [&](std::size_t end) {
    return static_cast<std::int64_t>(lit[end - 1].End - lit[first].Begin) * slot;
  };
  const auto fits = [&](std::size_t end) {
    return end - first <= kMostMarks && length(end) <= kLongestWrite;
  };
  // What is left of the space after a part when its write returns.
  const auto left = [&](std::size_t end) {
    const auto space = static_cast<std::int64_t>(lit[end].Begin - lit[end - 1].End) * slot;
    return space - (length(end) <= kFineWrite ? kFineLateness : kCoarseLateness);
  };
  std::size_t best = first + 1;
  std::size_t end = first + 1;
  for (; end < lit.size() && fits(end); ++end) {
    if (left(end) >= left(best)) best = end;
  }
  return end == lit.size() && fits(end) ? end : best;
}

std::vector<unsigned> LengthsOf(std::span<const LitSlots> part, std::chrono::microseconds slot) {
  const auto length = [&](std::size_t slots) {
    return static_cast<unsigned>(slots * static_cast<std::size_t>(slot.count()));
  };
  std::vector<unsigned> lengths;
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (i > 0) lengths.push_back(length(part[i].Begin - part[i - 1].End));
    lengths.push_back(length(part[i].End - part[i].Begin));
  }
  return lengths;
}

}  // namespace keplo
