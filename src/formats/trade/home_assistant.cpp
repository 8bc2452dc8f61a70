#include <limits>

#include "formats/families.h"
#include "formats/trade/json_text.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

void TakePayload(const Json& payload, int line, FileReading& reading) {
  RemoteKey key;
  key.Line = line;
  if (!payload.is_object() || !payload.contains("timings") || !payload["timings"].is_array()) {
    return reading.Skip(std::move(key), R"(found no "timings", expected a list of whole numbers)");
  }
  LengthList lengths;
  for (const Json& timing : payload["timings"]) {
    if (!timing.is_number_integer()) {
      lengths.Refuse("found " + Shown(timing) + ", expected a whole number of microseconds");
      break;
    }
    const bool mark = lengths.Size() % 2 == 0;
    const auto length = timing.get<std::int64_t>();
    if (length == std::numeric_limits<std::int64_t>::min() || (length > 0) != mark) {
      lengths.Refuse("found " + timing.dump() + ", expected a " + (mark ? "mark above" : "space below") +
                     " 0");
    }
    if (!lengths.Fault().empty()) break;
    lengths.Add(mark ? length : -length);
  }
  const Json modulation = payload.value("modulation", Json());
  if (modulation.is_number_integer() && modulation >= 0 && modulation <= kMostCarrier) {
    key.Carrier = modulation.get<int>();
  } else if (!modulation.is_null()) {
    lengths.Refuse("found the modulation " + Shown(modulation) + ", expected a carrier in Hz");
  }
  AddLengths(reading, std::move(key), std::move(lengths));
}

/// One payload a line; or one over several lines, or a list of them.
void ReadPayloads(std::string_view text, const std::string& path, RemoteFile& file) {
  FileReading reading(path, file);
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    if (Trimmed(line).empty()) continue;
    std::string why;
    const Json payload = ParseJson(line, why);
    if (payload.is_discarded() && lines.Number() == 1) {
      const Json whole = ParseJson(text, why);
      if (whole.is_object()) return TakePayload(whole, 1, reading);
      if (whole.is_array()) {
        for (const Json& one : whole) TakePayload(one, 0, reading);
        return;
      }
    }
    if (payload.is_discarded()) {
      reading.Complain(lines.Number(), "found " + Quoted(line) + R"(, expected an object with "timings")");
    } else if (payload.is_array()) {
      for (const Json& one : payload) TakePayload(one, lines.Number(), reading);
    } else {
      TakePayload(payload, lines.Number(), reading);
    }
  }
}

bool IsPayloads(std::string_view text) { return text.find("\"timings\"") != std::string_view::npos; }

std::string WritePayloads(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  std::string text;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      const PulseTrain press = PressAndSilence(key);
      if (press.empty()) continue;
      if (key.Name) TellOnce(told, "the format keeps no names");
      TellRepeat(told, key);
      text += "{\"timings\":[";
      for (std::size_t i = 0; i < press.size(); ++i) {
        text += (i == 0 ? "" : i % 2 == 0 ? "," : ",-") + std::to_string(press[i]);
      }
      text += "],\"modulation\":" + std::to_string(CarrierOf(key)) + ",\"repeat_count\":0}\n";
    }
  }
  return text;
}

}  // namespace

const RemoteFormat kHomeAssistantFormat = {"ha", "Home Assistant's infrared payloads, one a line", IsPayloads,
                                           ReadPayloads, WritePayloads};

}  // namespace keplo::trade
