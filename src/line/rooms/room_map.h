#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keplo {

/// A room of the house, as a line of receivers knows it.
struct Room {
  int Number = 0;    // 1 to 8, as zone hardware counts
  std::string Name;  // what stands in its topic for the filter's +; without a +, the whole topic
};

/// The receivers of a line that listens to a broker.
struct RoomMap {
  std::string Filter;     // of topics, with $share/GROUP/ in front of it where programs share the receivers
  std::string SendTopic;  // its + stands for a room's name; empty where nothing is sent
  std::vector<Room> Rooms;

  /// The name of the room that a topic is of.
  std::string NameOf(std::string_view topic) const;
  /// The number of a room; 0 if it has none.
  int NumberOf(std::string_view name) const;
  /// The first room of a number; the one that is alone for 0.
  /// @return null if there is none
  const Room* Find(int number) const;
  /// The topics that are known by their whole names; none where other programs share the receivers.
  std::vector<std::string> WholeTopics() const;
  /// Where to send for a room.
  /// @return none where it takes a room's name and there is no such room
  std::optional<std::string> SendTopicOf(int number) const;
};

/// Reads "FILTER [send:TOPIC] [NUMBER:NAME...]", as it stands after mqtt: in ports.conf.
/// @return what was expected instead; empty if all is well
std::string ParseRooms(std::string_view text, RoomMap& rooms);

}  // namespace keplo
