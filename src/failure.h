#pragma once

#include <stdexcept>
#include <string>

namespace keplo {

/// A run-time failure that a caller of the domain catches: a text for a person and the number that the
/// error record of the host carries.
class Failure : public std::runtime_error {
 public:
  Failure(int number, const std::string& text) : std::runtime_error(text), number_(number) {}

  int Number() const { return number_; }

 private:
  int number_;
};

}  // namespace keplo
