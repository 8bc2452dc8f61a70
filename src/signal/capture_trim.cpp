#include "signal/capture_trim.h"

#include <cstdint>
#include <cstring>

namespace keplo {

std::size_t SignalBytes(std::string_view capture) {
  std::size_t end = capture.size();
  std::uint64_t word = 0;
  for (; end >= sizeof word; end -= sizeof word) {
    std::memcpy(&word, capture.data() + end - sizeof word, sizeof word);
    if (word != 0) break;
  }
  while (end > 0 && capture[end - 1] == '\0') --end;
  return end;
}

}  // namespace keplo
