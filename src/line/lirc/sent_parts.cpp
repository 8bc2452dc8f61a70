#include "line/lirc/sent_parts.h"

namespace keplo {

namespace {

constexpr std::chrono::milliseconds kLongestWrite{490};

}  // namespace

std::size_t EndOfPart(std::span<const LitSlots> lit, std::size_t first, std::chrono::microseconds slot,
                      std::size_t most) {
  const auto fits = [&](std::size_t end) {
    const auto length = static_cast<std::int64_t>(lit[end - 1].End - lit[first].Begin) * slot;
    return end - first <= most && length <= kLongestWrite;
  };
  const auto space = [&](std::size_t end) { return lit[end].Begin - lit[end - 1].End; };
  std::size_t best = first + 1;
  std::size_t end = best;
  for (; end < lit.size() && fits(end); ++end) {
    if (space(end) >= space(best)) best = end;
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
