#include "formats/recording.h"

#include <system_error>
#include <utility>

#include "disk/read_input.h"
#include "formats/formats.h"

namespace keplo {

namespace {

std::string ReadWhole(const std::string& path, const std::string& name) try {
  std::string bytes = ReadInput(path, kLargestRecording);
  if (bytes.size() > kLargestRecording) {
    throw FormatError(name + ": larger than the " + std::to_string(kLargestRecording) +
                      " bytes that a recording may have");
  }
  return bytes;
} catch (const std::system_error& error) {
  throw FormatError(name + ": cannot be read: " + error.code().message());
}

}  // namespace

Recording LoadRecording(const std::string& path) {
  const bool named = path != "-";
  const std::string name = named ? path : "standard input";
  std::string bytes = ReadWhole(path, name);
  const Format& format = named ? FormatOfFile(path) : FormatOfBytes(bytes);
  Recording recording{name, {}};
  recording.Presses = format.Read(std::move(bytes), name, recording.Complaints);
  return recording;
}

}  // namespace keplo
