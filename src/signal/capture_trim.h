#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace keplo {

/// Length of a capture up to the last byte with a sample of 1, bytes; 0 for one that holds none.
std::size_t SignalBytes(std::string_view capture);

}  // namespace keplo
