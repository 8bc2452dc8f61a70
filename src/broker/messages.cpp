#include "broker/messages.h"

#include <cerrno>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "disk/json_file.h"
#include "failure.h"
#include "program/json_line.h"

namespace keplo::broker {

namespace {

constexpr int kLeastCarrier = 1000, kMostCarrier = 1'000'000;  // Hz

std::string_view NameOf(KeyStage stage) {
  switch (stage) {
    case KeyStage::Press:
      return "press";
    case KeyStage::Hold:
      return "hold";
    case KeyStage::Release:
      return "release";
  }
  return "";
}

nlohmann::ordered_json TextOrNull(const std::string& text) {
  return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(text);
}

[[noreturn]] void Refuse(const std::string& text) { throw Failure(EINVAL, text); }

std::vector<std::int32_t> TimingsOf(const nlohmann::json& array) {
  std::vector<std::int32_t> timings;
  std::int64_t total = 0;
  for (const nlohmann::json& item : array) {
    const std::string place = "timings[" + std::to_string(timings.size()) + "]";
    if (!item.is_number_integer() || item > kLongestRequestUs || item < -kLongestRequestUs || item == 0) {
      Refuse(place + " is no length in microseconds");
    }
    const auto length = item.get<std::int32_t>();
    const bool isMark = timings.size() % 2 == 0;
    if ((length > 0) != isMark)
      Refuse(place + " has the wrong sign: marks are positive, spaces negative, in turns");
    total += std::abs(length);
    if (total > kLongestRequestUs) Refuse("the signal lasts longer than 2 s");
    timings.push_back(length);
  }
  if (timings.empty()) Refuse("timings holds no length");
  return timings;
}

}  // namespace

std::string KeyMessage(const KeyEvent& event) {
  nlohmann::ordered_json message;
  message["event_type"] = NameOf(event.Stage);
  message["name"] = event.Name;
  message["command"] = event.Command;
  message["zone"] = event.Zone;
  message["time"] = event.Time;
  message["count"] = event.Count;
  return JsonLine(message);
}

std::string SignalMessage(const HeardSignal& signal) {
  nlohmann::ordered_json message;
  message["timings"] = signal.Timings;
  message["modulation"] =
      signal.Modulation ? nlohmann::ordered_json(*signal.Modulation) : nlohmann::ordered_json();
  message["protocol"] = TextOrNull(signal.Protocol);
  message["code"] = TextOrNull(signal.Code);
  message["command"] = TextOrNull(signal.Command);
  message["zone"] = signal.Zone;
  message["time"] = signal.Time;
  return JsonLine(message);
}

SendRequest ParseSendRequest(std::string_view payload) {
  if (payload.size() > kMostRequestBytes) Refuse("it has more than 65536 bytes");
  nlohmann::json object;
  try {
    object = ParseJsonObject(payload);
  } catch (const Failure& failure) {
    Refuse("it " + std::string(failure.what()));
  }
  SendRequest request;
  const auto timings = object.find("timings");
  const auto command = object.find("command");
  if (timings != object.end()) {
    if (!timings->is_array()) Refuse("timings is no list of lengths");
    request.Timings = TimingsOf(*timings);
    const auto modulation = object.find("modulation");
    if (modulation != object.end() && !modulation->is_null()) {
      if (!modulation->is_number_integer() || *modulation < kLeastCarrier || *modulation > kMostCarrier) {
        Refuse("modulation is no carrier in Hz");
      }
      request.Modulation = modulation->get<int>();
    }
    return request;
  }
  if (command == object.end() || !command->is_string() || command->get_ref<const std::string&>().empty()) {
    Refuse("it has neither \"timings\" nor \"command\"");
  }
  request.Command = *command;
  return request;
}

}  // namespace keplo::broker
