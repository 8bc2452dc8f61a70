#pragma once

#include <cstddef>
#include <filesystem>
#include <iosfwd>
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
};

/// Largest recording that is read, bytes; an hour of key presses stays below it.
inline constexpr std::size_t kLargestRecording = std::size_t{16} * 1024 * 1024;

/// Reads a recorded file: a .cap file is one press of raw bytes, anything else is pulse text. The path "-" is
/// the standard input, which is raw bytes if it holds a character that no text has.
/// @throws FormatError for a file that cannot be read, is too large or holds no press
Recording LoadRecording(const std::string& path);

/// The same from an open stream, as for the standard input.
/// @param name what to call the recording
Recording ReadRecording(std::istream& stream, const std::string& name);

}  // namespace keplo
