#pragma once

#include <cstdint>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace keplo::broker {

/// The settings in broker.json: which broker, how to log in, and what to publish.
struct BrokerSettings {
  std::string Host;
  std::uint16_t Port = 1883;
  bool Tls = false;
  std::string Ca;                // file of the certificate authority; empty for those of the system
  std::string Certificate, Key;  // files of this client; both or neither
  std::string User;
  std::string PasswordFile;  // its first line is the password
  std::string ClientId;      // empty for keplo-IDENTITY
  std::string Prefix = "keplo";
  std::string DiscoveryPrefix = "homeassistant";
  bool Signals = true;  // publish every signal that is received
  bool Send = false;    // accept send requests

  bool operator==(const BrokerSettings&) const = default;
};

/// The registered ports of MQTT.
inline constexpr std::uint16_t kPlainPort = 1883, kTlsPort = 8883;

/// APPPATH/broker.json
std::filesystem::path BrokerFile(const std::filesystem::path& appPath);

/// Parses the settings. Relative file names are relative to the folder of the file.
/// @param file for error messages
/// @throws Failure "FILE, line N: what is wrong and what was expected"
BrokerSettings ParseBrokerSettings(std::string_view text, const std::filesystem::path& file);

/// The text of broker.json; nothing if there is no such file.
/// @throws Failure for a file that cannot be read
std::optional<std::string> ReadBrokerFile(const std::filesystem::path& file);

/// The settings of an application path; nothing without a broker.json.
/// @throws Failure as ParseBrokerSettings; for a file that cannot be read
std::optional<BrokerSettings> ReadBrokerSettings(const std::filesystem::path& appPath);

/// Like ReadBrokerSettings.
/// @throws Failure with ENOENT if there is no broker.json
BrokerSettings RequireBrokerSettings(const std::filesystem::path& appPath);

/// "HOST port PORT", for messages.
std::string NameOf(const BrokerSettings& settings);

/// All settings by their keys, in the order of the manual.
nlohmann::ordered_json AsJson(const BrokerSettings& settings);

/// The password, without its line end; empty if there is no password file.
/// @throws Failure for a file that cannot be read, or that users other than its owner may read
std::string ReadPassword(const BrokerSettings& settings);

}  // namespace keplo::broker
