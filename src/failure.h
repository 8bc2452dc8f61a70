#pragma once

#include <stdexcept>
#include <string>

namespace keplo {

/// A run-time failure: a text for the user, and the number for the host's error record.
class Failure : public std::runtime_error {
 public:
  Failure(int number, const std::string& text) : std::runtime_error(text), number_(number) {}

  int Number() const { return number_; }

 private:
  int number_;
};

}  // namespace keplo
