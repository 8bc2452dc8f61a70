#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "line/rooms/room_map.h"

namespace keplo {

/// COM numbers that the system asks for.
inline constexpr std::int32_t kFirstPort = 1, kLastPort = 30;

/// What stands behind a COM number.
struct MappedPort {
  enum class Kind { Serial, Lirc, Mqtt, Replay };

  std::int32_t Port = 0;
  Kind Type = Kind::Serial;
  std::string Device;              // node of a serial or infrared device, or topic of receivers on a broker
  std::vector<std::string> Files;  // recordings of a replay line
  RoomMap Rooms;                   // of receivers on a broker
  bool IsFoundOnUsb = false;       // an adapter that ports.conf does not name: what hangs on it is not known
};

/// The kind's name, as in ports.conf.
std::string KindName(MappedPort::Kind kind);

/// The ports of this machine, by their numbers.
struct PortMap {
  std::vector<MappedPort> Ports;      // by number
  std::vector<std::string> Mistakes;  // of ports.conf: file, line, what was expected
  std::vector<std::string> LeftOut;   // why a device got no number
  std::string WhyEmpty;               // and what to do; empty where there is a port, or a mistake
  bool IsFound = false;               // what the machine has, not what ports.conf says
  std::string AppPath = {};           // that it was read for, as commands in messages name it; may be empty
};

/// Where the system tells of its devices; other folders in tests.
struct DeviceFolders {
  std::filesystem::path Sys = "/sys/class";
  std::filesystem::path Dev = "/dev";
};

/// Reads the text of ports.conf: lines "NUMBER = serial:DEVICE", "lirc:DEVICE", "replay:FILE..." or
/// "mqtt:TOPIC [send:TOPIC] [ROOM:NAME...]". A # that begins a line or follows a blank begins a comment; any
/// other is of a topic. A line with a mistake is told and left out.
/// @param path names the file in messages
PortMap ParsePortMap(const std::string& text, const std::string& path);

/// What the machine has, in an order that a restart does not change: serial hardware by its number, then
/// other serial devices by name, then infrared devices. Names without hardware are left out, and a port on
/// which the system has its console: what is wired there is no receiver.
PortMap FindPorts(const DeviceFolders& folders);

/// The map of ports.conf in the application path, or, where there is none, what the machine has.
PortMap LoadPortMap(const std::filesystem::path& appPath, const DeviceFolders& folders = {});

}  // namespace keplo
