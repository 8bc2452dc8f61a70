#include <cstddef>
#include <cstdint>
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

/// Arbitrary text as remotes of a format that its first byte chooses, or as the text itself tells.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const auto formats = keplo::RemoteFormats();
  const std::size_t choice = data[0] % (formats.size() + 1);
  try {
    GoRound(keplo::ReadRemotes(text, "fuzz",
                               choice < formats.size() ? formats[choice].Name : std::string_view()));
  } catch (const keplo::FormatError&) {
    // Refused with a message.
  }
  return 0;
}
