#include "line/rooms/room_press.h"

#include <algorithm>
#include <cctype>

#include "formats/remote.h"

namespace keplo {

namespace {

bool Has(std::string_view text, std::string_view word) { return text.find(word) != std::string_view::npos; }

std::string_view WithoutBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// A list with brackets and commas as one line of lengths.
std::string PlainList(std::string_view list) {
  std::string plain(list);
  std::replace_if(
      plain.begin(), plain.end(),
      [](char letter) { return letter == ',' || letter == '[' || letter == ']' || letter == '\n'; }, ' ');
  return plain;
}

PulseTrain FirstPressOf(const RemoteFile& file) {
  for (const Remote& remote : file.Remotes) {
    for (const RemoteKey& key : remote.Keys) {
      if (!key.Lengths.empty()) return key.Lengths;
      if (key.Coded) return PressLengths(*key.Coded, 0);
      if (!key.Skipped.empty()) throw FormatError(key.Skipped);
    }
  }
  throw FormatError(file.Complaints.empty() ? "it holds no lengths" : file.Complaints.front().Text);
}

PulseTrain ReadAs(std::string_view format, std::string_view text, const std::string& topic) {
  RemoteFile file;
  RemoteFormatNamed(format).Read(text, topic, file);
  return FirstPressOf(file);
}

bool IsTasmota(std::string_view topic) {
  constexpr std::string_view kCommand = "irsend";
  const std::string_view last = topic.substr(topic.rfind('/') + 1);
  return std::equal(last.begin(), last.end(), kCommand.begin(), kCommand.end(), [](char left, char right) {
    return std::tolower(static_cast<unsigned char>(left)) == right;
  });
}

}  // namespace

PulseTrain PressOfMessage(std::string_view payload, const std::string& topic) {
  if (payload.size() > kLongestRoomMessage) throw FormatError("it has more than 65536 bytes");
  const std::string_view text = WithoutBlanks(payload);
  if (text.empty() || text == "null" || text == "None") return {};
  if (text.front() == '{') {
    if (Has(text, "\"timings\"")) return ReadAs("ha", text, topic);
    // The same topic tells of lamps and sockets too.
    if (!Has(text, "\"IrReceived\"") && !Has(text, "\"RawData\"")) return {};
    return ReadAs("tasmota", text, topic);
  }
  if (Has(text, "[remote.") && Has(text, "Received ")) return ReadAs("esphome", text, topic);
  const bool isList = text.find_first_not_of("[]+-0123456789,. \t\r\n") == std::string_view::npos;
  return isList ? ReadAs("one-line", PlainList(text), topic) : PulseTrain();
}

std::string MessageOfSignal(std::span<const LitSlots> lit, std::chrono::microseconds slot,
                            std::int32_t carrier, std::string_view topic) {
  const bool tasmota = IsTasmota(topic);
  std::string lengths;
  const auto add = [&](std::string_view sign, std::size_t slots) {
    if (!lengths.empty()) lengths += ',';
    lengths +=
        std::string(tasmota ? "" : sign) + std::to_string(static_cast<std::int64_t>(slots) * slot.count());
  };
  for (std::size_t i = 0; i < lit.size(); ++i) {
    if (i > 0) add("-", lit[i].Begin - lit[i - 1].End);
    add("", lit[i].End - lit[i].Begin);
  }
  if (tasmota) return std::to_string(carrier) + "," + lengths;
  return "{\"timings\":[" + lengths + "],\"modulation\":" + std::to_string(carrier) + ",\"repeat_count\":0}";
}

}  // namespace keplo
