#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/recording.h"

namespace keplo {

/// A format that recordings are kept in.
struct Format {
  std::string_view Name;
  std::array<std::string_view, 2> Endings;  // of file names, with the dot; empty where there are fewer
  /// Whether bytes without a file name look like it.
  bool (*Sniff)(std::string_view bytes);
  /// @param name what the bytes were read from, for error texts
  /// @param complaints gets what could not be read of bytes that hold a press
  /// @throws FormatError if they hold no press
  std::vector<Press> (*Read)(std::string bytes, std::string_view name, std::vector<std::string>& complaints);
  /// Null for a format that is only read.
  std::string (*Write)(std::span<const PulseTrain> presses);
};

inline constexpr std::string_view kMode2Format = "mode2";
inline constexpr std::string_view kOneLineFormat = "one-line";

/// All formats; what is of no other is of the first.
std::span<const Format> Formats();

/// The format of a file by the ending of its name.
const Format& FormatOfFile(std::string_view path);

/// The format of bytes by their look.
const Format& FormatOfBytes(std::string_view bytes);

/// The format that a file of that name is written in.
const Format& FormatToWrite(std::string_view path);

/// @param name of a format that can be written
/// @return the text of the presses
std::string WriteAs(std::string_view name, std::span<const PulseTrain> presses);

}  // namespace keplo
