#include "formats/remote_presses.h"

#include <algorithm>
#include <array>

#include "formats/remote.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo {

namespace {

/// Whether the first line that is no comment is one of marks and spaces.
bool IsPlain(std::string_view text) {
  constexpr std::array<std::string_view, 4> kWords = {"pulse", "space", "timeout", "carrier"};
  trade::Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    const std::string_view word = trade::TakeWord(line);
    if (word.empty() || word.starts_with('#') || word.starts_with("//")) continue;
    return word.front() == '+' || word.front() == '-' ||
           std::find(kWords.begin(), kWords.end(), word) != kWords.end();
  }
  return true;
}

}  // namespace

std::optional<std::vector<PulseTrain>> PressesOfRemotes(std::string_view text, const std::string& name,
                                                        std::vector<std::string>& complaints) {
  if (IsPlain(text)) return std::nullopt;
  const auto formats = RemoteFormats();
  const auto format = std::find_if(formats.begin(), formats.end(),
                                   [&](const RemoteFormat& known) { return known.Detect(text); });
  if (format == formats.end()) return std::nullopt;
  std::vector<PulseTrain> presses;
  const RemoteFile file = ReadRemotes(text, name, format->Name);
  for (const Complaint& complaint : file.Complaints) complaints.push_back(complaint.Message());
  for (const Remote& remote : file.Remotes) {
    for (const RemoteKey& key : remote.Keys) {
      if (PulseTrain press = trade::PressOf(key); !press.empty()) {
        presses.push_back(std::move(press));
      } else if (!key.Skipped.empty()) {
        complaints.push_back(Complaint{key.File, key.Line, key.Name.value_or(""), key.Skipped}.Message());
      }
    }
  }
  if (presses.empty()) {
    throw FormatError(name + ": there is no key press in it; read as " + std::string(format->Name) +
                      ", none of its keys has digits or lengths" +
                      (complaints.empty() ? "" : "; " + complaints.front()));
  }
  return presses;
}

}  // namespace keplo
