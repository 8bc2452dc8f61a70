#include "program/environment.h"

#include <cstdlib>

namespace keplo {

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

bool HasDisplay() {
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    if (!Environment(name).empty()) return true;
  }
  return false;
}

}  // namespace keplo
