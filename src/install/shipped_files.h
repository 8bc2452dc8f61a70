#pragma once

#include <span>
#include <string_view>

namespace keplo {

/// A file of a first install.
struct ShippedFile {
  std::string_view Name;
  std::string_view Bytes;
};

/// keplo.cfg and the icon.
std::span<const ShippedFile> ShippedFiles();

}  // namespace keplo
