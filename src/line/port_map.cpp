#include "line/port_map.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>
#include <tuple>

#include "disk/posix_file_system.h"
#include "failure.h"
#include "line/device_access.h"

namespace keplo {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kExpectedLine = "expected a line such as \"1 = serial:/dev/ttyS0\"";
constexpr const char* kNoDevices =
    "There is no receiver and no transmitter: nothing will be heard, and what is sent goes nowhere. Plug one "
    "in, or use --replay FILE.";
constexpr std::size_t kLongestFile = std::size_t{64} * 1024;

std::string_view Trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// A # within a word belongs to a topic.
std::string_view WithoutComment(std::string_view line) {
  for (auto at = line.find('#'); at != std::string_view::npos; at = line.find('#', at + 1)) {
    if (at == 0 || kBlanks.find(line[at - 1]) != std::string_view::npos) return line.substr(0, at);
  }
  return line;
}

std::optional<std::int32_t> NumberOf(std::string_view text) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::vector<std::string> Words(std::string_view text) {
  std::istringstream stream{std::string(text)};
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(std::move(word));
  return words;
}

/// Reads one line into a port.
/// @return what was expected instead; empty for a good line
std::string ParseLine(std::string_view line, MappedPort& port) {
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return std::string(kExpectedLine);
  const auto number = NumberOf(Trimmed(line.substr(0, equals)));
  if (!number || *number < kFirstPort || *number > kLastPort) {
    return "expected a number from " + std::to_string(kFirstPort) + " to " + std::to_string(kLastPort) +
           " in front of the equals sign";
  }
  port.Port = *number;
  const std::string_view target = Trimmed(line.substr(equals + 1));
  const std::size_t colon = target.find(':');
  const std::string_view kind =
      colon == std::string_view::npos ? std::string_view() : target.substr(0, colon);
  const std::string_view rest =
      colon == std::string_view::npos ? std::string_view() : Trimmed(target.substr(colon + 1));
  if (kind == "serial" || kind == "lirc") {
    if (rest.empty() || rest.front() != '/')
      return "expected the path of a device after " + std::string(kind) + ":";
    if (Words(rest).size() > 1) return "expected one device after " + std::string(kind) + ":";
    port.Type = kind == "serial" ? MappedPort::Kind::Serial : MappedPort::Kind::Lirc;
    port.Device = rest;
    return {};
  }
  if (kind == "mqtt") {
    port.Type = MappedPort::Kind::Mqtt;
    std::string mistake = ParseRooms(rest, port.Rooms);
    port.Device = port.Rooms.Filter;
    return mistake;
  }
  if (kind != "replay") return "expected serial:, lirc:, mqtt: or replay: after the equals sign";
  port.Type = MappedPort::Kind::Replay;
  port.Files = Words(rest);
  return port.Files.empty() ? "expected the path of a recording after replay:" : "";
}

std::string FirstLineOf(const fs::path& file) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  return line;
}

/// The number at the end of a name such as ttyS0, for an order in which 10 comes after 9.
std::tuple<std::string, int> NameAndNumber(const std::string& name) {
  const std::size_t digits = name.find_last_not_of("0123456789") + 1;
  return {name.substr(0, digits), NumberOf(std::string_view(name).substr(digits)).value_or(-1)};
}

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    names.push_back(at->path().filename().string());
  }
  std::sort(names.begin(), names.end(), [](const std::string& left, const std::string& right) {
    return NameAndNumber(left) < NameAndNumber(right);
  });
  return names;
}

/// A console has no device behind it; a name without hardware has the type 0.
bool HasHardware(const fs::path& tty) {
  std::error_code error;
  if (!fs::exists(tty / "device", error)) return false;
  const fs::path type = tty / "type";
  return !fs::exists(type, error) || FirstLineOf(type) != "0";
}

/// Names of the terminals on which the kernel has its console.
std::vector<std::string> Consoles(const fs::path& ttys) {
  return Words(FirstLineOf(ttys / "console/active"));
}

bool IsSerialHardware(const std::string& name) { return name.rfind("ttyS", 0) == 0; }

}  // namespace

std::string KindName(MappedPort::Kind kind) {
  switch (kind) {
    case MappedPort::Kind::Serial:
      return "serial";
    case MappedPort::Kind::Lirc:
      return "lirc";
    case MappedPort::Kind::Mqtt:
      return "mqtt";
    case MappedPort::Kind::Replay:
      break;
  }
  return "replay";
}

PortMap ParsePortMap(const std::string& text, const std::string& path) {
  PortMap map;
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // some editors put it in front
  std::istringstream lines(text.substr(text.rfind(kByteOrderMark, 0) == 0 ? kByteOrderMark.size() : 0));
  std::string line;
  for (int number = 1; std::getline(lines, line); ++number) {
    const std::string_view content = Trimmed(WithoutComment(line));
    if (content.empty()) continue;
    MappedPort port;
    std::string mistake = ParseLine(content, port);
    const bool twice =
        mistake.empty() && std::any_of(map.Ports.begin(), map.Ports.end(),
                                       [&](const auto& other) { return other.Port == port.Port; });
    if (twice) mistake = "port " + std::to_string(port.Port) + " has a line already; expected another number";
    for (std::string& file : port.Files) file = (fs::path(path).parent_path() / file).string();
    if (mistake.empty()) {
      map.Ports.push_back(std::move(port));
    } else {
      map.Mistakes.push_back(mistake.insert(0, path + ":" + std::to_string(number) + ": "));
    }
  }
  if (map.Ports.empty() && map.Mistakes.empty()) {
    map.WhyEmpty = path +
                   " names no port: nothing will be heard, and what is sent goes nowhere. Add a line such as "
                   "\"1 = serial:/dev/ttyS0\", or remove the file to use what the machine has.";
  }
  std::sort(map.Ports.begin(), map.Ports.end(),
            [](const MappedPort& left, const MappedPort& right) { return left.Port < right.Port; });
  return map;
}

PortMap FindPorts(const DeviceFolders& folders) {
  PortMap map;
  map.IsFound = true;
  std::vector<MappedPort> found;
  const fs::path ttys = folders.Sys / "tty";
  const std::vector<std::string> consoles = Consoles(ttys);
  const std::vector<std::string> names = NamesIn(ttys);
  for (const bool hardware : {true, false}) {
    for (const std::string& name : names) {
      if (IsSerialHardware(name) != hardware || !HasHardware(ttys / name)) continue;
      MappedPort port{0, MappedPort::Kind::Serial, (folders.Dev / name).string(), {}, {}};
      port.IsFoundOnUsb = IsUsbPort(port.Device, folders.Sys);
      if (std::find(consoles.begin(), consoles.end(), name) == consoles.end()) {
        found.push_back(std::move(port));
      } else {
        map.LeftOut.push_back(port.Device +
                              " is the console of the system, so it has no number; give it one in " +
                              "ports.conf if a receiver or a transmitter is wired to it all the same");
      }
    }
  }
  for (const std::string& name : NamesIn(folders.Sys / "lirc")) {
    found.push_back({0, MappedPort::Kind::Lirc, (folders.Dev / name).string(), {}, {}});
  }
  for (MappedPort& port : found) {
    port.Port = kFirstPort + static_cast<std::int32_t>(map.Ports.size());
    if (port.Port <= kLastPort) {
      map.Ports.push_back(std::move(port));
    } else {
      map.LeftOut.push_back(port.Device + " has no number, since there are only " +
                            std::to_string(kLastPort) + "; give it one in ports.conf");
    }
  }
  if (map.Ports.empty()) map.WhyEmpty = map.LeftOut.empty() ? kNoDevices : map.LeftOut.front() + ".";
  return map;
}

PortMap LoadPortMap(const fs::path& appPath, const DeviceFolders& folders) {
  const fs::path file = appPath / "ports.conf";
  std::error_code error;
  if (!fs::exists(fs::symlink_status(file, error))) return FindPorts(folders);
  std::string text;
  try {
    text = PosixFileSystem().Read(file, kLongestFile + 1);
  } catch (const Failure&) {
    return {
        {}, {file.string() + " cannot be read. Make it a readable text file, or remove it."}, {}, {}, false};
  }
  if (text.size() > kLongestFile) {
    return {{}, {file.string() + " is longer than 64 KiB. Remove what is no line of a port."}, {}, {}, false};
  }
  return ParsePortMap(text, file.string());
}

}  // namespace keplo
