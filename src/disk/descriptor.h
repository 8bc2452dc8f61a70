#pragma once

#include <unistd.h>

#include <utility>

namespace keplo {

/// A file descriptor, closed on destruction.
class Descriptor {
 public:
  /// @param number as returned by the system; -1 if the file could not be opened
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (IsOpen()) close(number_);
  }

  int Number() const { return number_; }
  bool IsOpen() const { return number_ >= 0; }

 private:
  int number_;
};

}  // namespace keplo
