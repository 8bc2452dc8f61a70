#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "formats/pulse_text.h"

namespace keplo {

/// A capture buffer as a line filled it: eight samples a byte, the earliest in the most significant bit.
struct RawBytes {
  std::string Bytes;
};

using Press = std::variant<PulseTrain, RawBytes>;

struct Recording {
  std::string Path;
  std::vector<Press> Presses;
  std::vector<std::string> Complaints = {};  // what of a file of remotes is no press, and why
};

/// Largest recording that is read, bytes; an hour of key presses stays below it.
inline constexpr std::size_t kLargestRecording = std::size_t{16} * 1024 * 1024;

/// Reads a recorded file or pipe in the format that its name tells; the path "-" is the standard input, whose
/// bytes tell it. The keys of a file of remotes are a press each. A signal ends the wait for a pipe.
/// @throws FormatError for a file that cannot be read, is too large or holds no press
Recording LoadRecording(const std::string& path);

}  // namespace keplo
