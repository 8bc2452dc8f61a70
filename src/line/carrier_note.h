#pragma once

#include <cstdint>
#include <string>

#include "line/device_line.h"

namespace keplo {

/// Tells once that a device sends with a carrier of its own.
class CarrierNote {
 public:
  /// @param hertz the carrier that is asked for. Receivers hear one that is near theirs as well as theirs.
  void Tell(const TellUser& tell, const std::string& device, std::int32_t hertz);

 private:
  bool told_ = false;
};

}  // namespace keplo
