#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "formats/remote.h"

namespace {

/// Whatever was read can be written in each format, and is read again.
void GoRound(const keplo::RemoteFile& file) {
  for (const keplo::Remote& remote : file.Remotes) {
    for (const keplo::RemoteKey& key : remote.Keys) {
      if (!key.Skipped.empty() == (key.Coded || !key.Lengths.empty())) __builtin_trap();
      if (key.Lengths.size() > keplo::kMostLengths) __builtin_trap();
      if (key.Coded) keplo::PatternsOf(key.Coded->Code);
    }
  }
  for (const keplo::RemoteFormat& format : keplo::RemoteFormats()) {
    std::vector<keplo::Complaint> told;
    const std::string text = keplo::WriteRemotes(format.Name, file.Remotes, told);
    try {
      keplo::ReadRemotes(text, "fuzz", format.Name);
    } catch (const keplo::FormatError&) {
      // All keys were left out.
    }
  }
}

}  // namespace

/// The format that all texts are of, by its name in the environment; else none.
std::string_view WantedFormat() {
  const char* const name = std::getenv("KEPLO_FORMAT");
  return name == nullptr ? std::string_view() : keplo::RemoteFormatNamed(name).Name;
}

/// Arbitrary text as remotes of the wanted format, or of the one that its first byte chooses, or as the text
/// itself tells.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const auto formats = keplo::RemoteFormats();
  static const std::string_view wanted = WantedFormat();
  const std::size_t choice = data[0] % (formats.size() + 1);
  const std::string_view chosen = choice < formats.size() ? formats[choice].Name : std::string_view();
  try {
    GoRound(keplo::ReadRemotes(text, "fuzz", wanted.empty() ? chosen : wanted));
  } catch (const keplo::FormatError&) {
    // Refused with a message.
  }
  return 0;
}
