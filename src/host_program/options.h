#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/component_entry.h"

namespace keplo::host {

/// What the host should do.
enum class Task { Run, Register, Unregister };

/// Default port of the web pages; it is not registered for anything else.
inline constexpr std::uint16_t kUsualHttpPort = 8738;

struct HostOptions {
  CreationContext Control;
  bool Headless = false;
  bool Json = false;
  bool Once = false;
  bool Presses = false;
  std::optional<std::uint16_t> HttpPort = kUsualHttpPort;  // 0 for any free port; none to serve no pages
  std::string HttpAddress = "127.0.0.1";
  std::vector<std::string> HttpNames;
  std::filesystem::path HostFile;
  std::filesystem::path ComponentFile;  // empty for the registered one
  Task ToDo = Task::Run;
};

/// Reads the command line.
/// @return the exit status if the program should end at once, after --help or an error
std::optional<int> ReadOptions(int argc, char** argv, HostOptions& options);

}  // namespace keplo::host
