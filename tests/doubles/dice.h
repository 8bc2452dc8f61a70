#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

namespace keplo::tests {

/// Numbers that are the same on every machine, which those of the library's distributions are not.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : generator_(seed) {}

  int From(int least, int most) {
    return least + static_cast<int>(generator_() % static_cast<unsigned>(most - least + 1));
  }
  bool Once(int of) { return From(1, of) == 1; }
  bool Percent(int part) { return From(1, 100) <= part; }
  std::size_t Place(std::size_t size) { return generator_() % size; }
  std::uint32_t Seed() { return static_cast<std::uint32_t>(generator_()); }

  /// Digits without any order.
  std::string Digits(int count) {
    std::string digits;
    while (count-- > 0) digits += From(0, 1) == 1 ? '1' : '0';
    return digits;
  }

 private:
  std::mt19937 generator_;
};

}  // namespace keplo::tests
