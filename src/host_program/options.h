#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/component_entry.h"

namespace keplo::host {

/// What the host is asked to do beside running.
enum class Task { Run, Register, Unregister };

/// Default port of the web pages; none of the registered ones.
inline constexpr std::uint16_t kUsualHttpPort = 8738;

struct HostOptions {
  CreationContext Control;
  bool Headless = false;
  bool Json = false;
  bool Once = false;
  bool Presses = false;
  std::optional<std::uint16_t> HttpPort = kUsualHttpPort;  // 0 for any free one; none for no pages
  std::string HttpAddress = "127.0.0.1";
  std::vector<std::string> HttpNames;
  std::filesystem::path HostFile;
  std::filesystem::path ComponentFile;  // empty for the registered one
  Task ToDo = Task::Run;
};

/// Reads the command line.
/// @return the exit status if the program is to end at once, after --help or wrong use
std::optional<int> ReadOptions(int argc, char** argv, HostOptions& options);

}  // namespace keplo::host
