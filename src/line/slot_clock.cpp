#include "line/slot_clock.h"

namespace keplo {

namespace {

constexpr std::chrono::milliseconds kLongestSleep{50};

}  // namespace

std::vector<LitSlots> LitSlotsOf(std::string_view bytes) {
  std::vector<LitSlots> lit;
  for (std::size_t slot = 0; slot < bytes.size() * 8; ++slot) {
    if ((static_cast<unsigned char>(bytes[slot / 8]) & (0x80U >> slot % 8)) == 0) continue;
    if (!lit.empty() && lit.back().End == slot) {
      ++lit.back().End;
    } else {
      lit.push_back({slot, slot + 1});
    }
  }
  return lit;
}

bool SleepUnlessEnded(DeviceCalls& calls, std::chrono::nanoseconds time) {
  while (!HeldSignals::Pending()) {
    const std::chrono::nanoseconds now = calls.Now();
    if (time - now <= kLongestSleep) {
      calls.SleepUntil(time);
      return true;
    }
    calls.SleepUntil(now + kLongestSleep);
  }
  return false;
}

}  // namespace keplo
