#pragma once

#include <cstddef>
#include <string>

namespace keplo {

/// Reads an input named by the user: a file, a pipe, a device, or "-" for standard input. A signal interrupts
/// the wait for input.
/// @param most bytes; of a longer input, one byte more is read, so that the caller can detect it
/// @throws std::system_error with the system's error; EINTR if a signal arrived
std::string ReadInput(const std::string& path, std::size_t most);

}  // namespace keplo
