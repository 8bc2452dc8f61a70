#include "line/rooms/room_map.h"

#include <algorithm>
#include <sstream>

namespace keplo {

namespace {

constexpr std::string_view kShared = "$share/";
constexpr std::string_view kSendWord = "send:";
constexpr int kMostRooms = 8;  // as zone hardware counts

std::vector<std::string_view> LevelsOf(std::string_view topic) {
  std::vector<std::string_view> levels;
  for (;;) {
    const std::size_t end = topic.find('/');
    levels.push_back(topic.substr(0, end));
    if (end == std::string_view::npos) return levels;
    topic.remove_prefix(end + 1);
  }
}

/// A filter without the group that shares it.
std::string_view WithoutGroup(std::string_view filter) {
  if (!filter.starts_with(kShared)) return filter;
  const std::size_t end = filter.find('/', kShared.size());
  return end == std::string_view::npos ? std::string_view() : filter.substr(end + 1);
}

bool IsFilter(std::string_view filter) {
  const std::string_view group = filter.substr(0, filter.size() - WithoutGroup(filter).size());
  const std::string_view topics = WithoutGroup(filter);
  if (topics.empty() || topics.front() == '$' || group == "$share//") return false;
  if (group.find_first_of("+#") != std::string_view::npos) return false;
  const std::vector<std::string_view> levels = LevelsOf(topics);
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const bool wild = levels[i].find_first_of("+#") != std::string_view::npos;
    if (wild && levels[i].size() > 1) return false;
    if (levels[i] == "#" && i + 1 < levels.size()) return false;
  }
  return true;
}

std::size_t CountOf(std::string_view topic, char wild) {
  return static_cast<std::size_t>(std::count(topic.begin(), topic.end(), wild));
}

bool HasName(std::string_view filter) {
  const std::string_view topics = WithoutGroup(filter);
  return CountOf(topics, '+') == 1 && CountOf(topics, '#') == 0;
}

/// @return what was expected instead; empty if all is well
std::string TakeRoom(const std::string& word, RoomMap& rooms) {
  const std::size_t colon = word.find(':');
  const bool numbered = colon == 1 && word.front() >= '1' && word.front() <= '0' + kMostRooms;
  if (!numbered || word.size() == 2) {
    return "expected send:TOPIC, or a room such as 2:kitchen with a number from 1 to 8";
  }
  Room room = {word.front() - '0', word.substr(2)};
  if (rooms.NumberOf(room.Name) != 0) return "room " + room.Name + " has a number already; expected another";
  rooms.Rooms.push_back(std::move(room));
  return {};
}

std::string TakeSendTopic(const std::string& topic, RoomMap& rooms) {
  const std::size_t names = CountOf(topic, '+');
  const bool fits = !topic.empty() && topic.find('#') == std::string::npos && names <= 1 && IsFilter(topic) &&
                    (names == 0 || HasName(rooms.Filter));
  if (!fits) return "expected a topic behind send:, with a + for the room only where the first topic has one";
  rooms.SendTopic = topic;
  return {};
}

}  // namespace

std::string RoomMap::NameOf(std::string_view topic) const {
  if (!HasName(Filter)) return std::string(topic);
  const std::string_view filter = WithoutGroup(Filter);
  const std::size_t name = filter.find('+');
  if (topic.size() < filter.size()) return std::string(topic);
  return std::string(topic.substr(name, topic.size() + 1 - filter.size()));
}

int RoomMap::NumberOf(std::string_view name) const {
  const auto room =
      std::find_if(Rooms.begin(), Rooms.end(), [&](const Room& known) { return known.Name == name; });
  return room == Rooms.end() ? 0 : room->Number;
}

const Room* RoomMap::Find(int number) const {
  if (number == 0 && Rooms.size() == 1) return Rooms.data();
  const auto room =
      std::find_if(Rooms.begin(), Rooms.end(), [&](const Room& known) { return known.Number == number; });
  return room == Rooms.end() ? nullptr : &*room;
}

std::vector<std::string> RoomMap::WholeTopics() const {
  if (Filter.starts_with(kShared)) return {};
  const std::size_t wild = Filter.find_first_of("+#");
  if (wild == std::string::npos) return {Filter};
  std::vector<std::string> topics;
  for (const Room& room : Rooms) {
    topics.push_back(HasName(Filter) ? std::string(Filter).replace(wild, 1, room.Name) : room.Name);
  }
  return topics;
}

std::optional<std::string> RoomMap::SendTopicOf(int number) const {
  const std::size_t place = SendTopic.find('+');
  if (place == std::string::npos) return SendTopic;
  const Room* const room = Find(number);
  if (room == nullptr) return std::nullopt;
  return std::string(SendTopic).replace(place, 1, room->Name);
}

std::string ParseRooms(std::string_view text, RoomMap& rooms) {
  std::istringstream words{std::string(text)};
  words >> rooms.Filter;
  if (!IsFilter(rooms.Filter)) {
    return "expected a topic after mqtt:, in which + and # stand for whole levels, and # for the last ones";
  }
  std::string mistake;
  for (std::string word; mistake.empty() && words >> word;) {
    mistake = word.starts_with(kSendWord) ? TakeSendTopic(word.substr(kSendWord.size()), rooms)
                                          : TakeRoom(word, rooms);
  }
  return mistake;
}

}  // namespace keplo
