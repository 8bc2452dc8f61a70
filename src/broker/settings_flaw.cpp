#include "broker/settings_flaw.h"

namespace keplo::broker {

std::optional<SettingsFlaw> FlawOf(const BrokerSettings& settings) {
  if (settings.Host.empty()) {
    return SettingsFlaw{"", "there is no \"host\"", "the name or address of the broker", "host",
                        "--host NAME"};
  }
  if (settings.Certificate.empty() != settings.Key.empty()) {
    const bool hasKey = settings.Certificate.empty();
    return SettingsFlaw{hasKey ? "key" : "certificate", "a client's certificate and its key come together",
                        "both \"certificate\" and \"key\"", hasKey ? "certificate" : "key",
                        hasKey ? "--certificate FILE" : "--key FILE"};
  }
  if (settings.User.empty() && !settings.PasswordFile.empty()) {
    return SettingsFlaw{"password_file", "a password belongs to a user", "\"user\" beside \"password_file\"",
                        "user", "--user NAME"};
  }
  const std::string ofTls = !settings.Ca.empty() ? "ca" : !settings.Certificate.empty() ? "certificate" : "";
  if (!settings.Tls && !ofTls.empty()) {
    return SettingsFlaw{ofTls, "\"" + ofTls + "\" does nothing without a secure connection",
                        "\"tls\": true beside it, or none", "tls", "--tls yes"};
  }
  return std::nullopt;
}

}  // namespace keplo::broker
