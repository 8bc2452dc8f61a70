#pragma once

#include <algorithm>
#include <cstdint>

namespace keplo {

/// Length of one sample at a setting of PROCDELAY, microseconds: 55 at the usual delay of 10, and never less
/// than 10.
inline double SampleTimeOf(std::int32_t delay) { return std::max(50 + 0.5 * delay, 10.0); }

}  // namespace keplo
