#include "formats/recording.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>
#include <utility>

namespace keplo {

namespace {

constexpr std::string_view kStandardInput = "-";
constexpr std::string_view kStandardInputName = "standard input";

[[noreturn]] void RefuseUnreadable(const std::string& name, int error) {
  throw FormatError(name + ": cannot be read: " + std::generic_category().message(error));
}

std::string ReadWhole(std::istream& stream, const std::string& name) {
  std::string bytes;
  std::array<char, 65536> block{};
  while (stream.read(block.data(), block.size()) || stream.gcount() > 0) {
    bytes.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > kLargestRecording) {
      throw FormatError(name + ": larger than the " + std::to_string(kLargestRecording) +
                        " bytes that a recording may have");
    }
  }
  return bytes;
}

/// Text has no control characters but blanks and line ends; the bytes of a capture always have some, since a
/// capture ends in silence.
bool IsText(std::string_view bytes) {
  return std::none_of(bytes.begin(), bytes.end(), [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return (code < 0x20 && !(code >= '\t' && code <= '\r')) || code == 0x7F;
  });
}

Recording OfRawBytes(const std::string& name, std::string bytes) {
  return {name, {RawBytes{std::move(bytes)}}};
}

bool IsCaptureName(const std::string& path) {
  const std::string ending = std::filesystem::path(path).extension().string();
  return ending == ".cap" || ending == ".CAP";
}

Recording OfText(const std::string& name, std::string_view text) {
  std::vector<PulseTrain> trains = ParsePulseText(text, name);
  return {name, {std::make_move_iterator(trains.begin()), std::make_move_iterator(trains.end())}};
}

}  // namespace

Recording ReadRecording(std::istream& stream, const std::string& name) {
  std::string bytes = ReadWhole(stream, name);
  return IsText(bytes) ? OfText(name, bytes) : OfRawBytes(name, std::move(bytes));
}

Recording LoadRecording(const std::string& path) {
  if (path == kStandardInput) return ReadRecording(std::cin, std::string(kStandardInputName));
  // Opening a folder succeeds and reading it fails without a reason, so it is told apart here.
  std::error_code ignored;
  if (std::filesystem::is_directory(path, ignored)) RefuseUnreadable(path, EISDIR);
  errno = 0;
  std::ifstream stream(path, std::ios::binary);
  if (!stream) RefuseUnreadable(path, errno);
  std::string bytes = ReadWhole(stream, path);
  if (stream.bad()) RefuseUnreadable(path, errno != 0 ? errno : EIO);
  return IsCaptureName(path) ? OfRawBytes(path, std::move(bytes)) : OfText(path, bytes);
}

}  // namespace keplo
