#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keplo::broker {

/// What broker.json says: which broker, how to get in, and what to tell it.
struct BrokerSettings {
  std::string Host;
  std::uint16_t Port = 1883;
  bool Tls = false;
  std::string Ca;                // file of the authority; empty for the system's authorities
  std::string Certificate, Key;  // files of this client; both or neither
  std::string User;
  std::string PasswordFile;  // its first line is the password
  std::string ClientId;      // empty for keplo-IDENTITY
  std::string Prefix = "keplo";
  std::string DiscoveryPrefix = "homeassistant";
  bool Signals = true;  // tell every signal that is heard
  bool Send = false;    // send what the broker asks for

  bool operator==(const BrokerSettings&) const = default;
};

/// Usual ports of a broker, as registered.
inline constexpr std::uint16_t kPlainPort = 1883, kTlsPort = 8883;

/// APPPATH/broker.json
std::filesystem::path BrokerFile(const std::filesystem::path& appPath);

/// The settings that a text is. A file name that is no whole path counts from the folder of the file.
/// @param file for the text of a failure
/// @throws Failure "FILE, line N: what is wrong and what was expected"
BrokerSettings ParseBrokerSettings(std::string_view text, const std::filesystem::path& file);

/// The text of a broker.json; none if there is no such file.
/// @throws Failure for a file that cannot be read
std::optional<std::string> ReadBrokerFile(const std::filesystem::path& file);

/// The settings of an application path; none without a broker.json.
/// @throws Failure as ParseBrokerSettings; for a file that cannot be read
std::optional<BrokerSettings> ReadBrokerSettings(const std::filesystem::path& appPath);

/// The same.
/// @throws Failure with ENOENT without a broker.json
BrokerSettings RequireBrokerSettings(const std::filesystem::path& appPath);

/// "HOST port PORT", for a person.
std::string NameOf(const BrokerSettings& settings);

/// All settings by their keys, in the order of the manual.
nlohmann::ordered_json AsJson(const BrokerSettings& settings);

/// The password, without its line end; empty if no file is named.
/// @throws Failure for a file that cannot be read, or that others than its owner may read
std::string ReadPassword(const BrokerSettings& settings);

}  // namespace keplo::broker
