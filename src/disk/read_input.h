#pragma once

#include <cstddef>
#include <string>

namespace keplo {

/// What a user names to be read: a file, a pipe, a device, or "-" for the standard input. A signal ends the
/// wait for a pipe that nobody writes to, whether or not it ends the program.
/// @param most bytes; what is longer is read up to one byte more, by which it can be told
/// @throws std::system_error with the system's reason; EINTR if a signal came
std::string ReadInput(const std::string& path, std::size_t most);

}  // namespace keplo
