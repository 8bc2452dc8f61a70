#pragma once

#include <cstddef>

namespace keplo::tests {

/// How often this program has allocated memory until now.
std::size_t Allocations();

}  // namespace keplo::tests
