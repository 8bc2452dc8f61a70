#pragma once

#include <chrono>
#include <thread>

namespace keplo::tests {

/// Looks again and again until something holds that another program or thread brings about.
/// @return false if it does not within two minutes, however slow the machine
template <typename Condition>
bool Until(Condition holds) {
  const auto last = std::chrono::steady_clock::now() + std::chrono::minutes(2);
  while (!holds()) {
    if (std::chrono::steady_clock::now() > last) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

}  // namespace keplo::tests
