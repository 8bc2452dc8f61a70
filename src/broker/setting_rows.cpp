#include "broker/setting_rows.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

namespace keplo::broker {

namespace {

bool IsUtf8(const std::string& text) {
  try {
    static_cast<void>(nlohmann::json(text).dump());
    return true;
  } catch (const nlohmann::json::type_error&) {
    return false;
  }
}

bool IsUsableText(const std::string& text) {
  return text.size() <= kMostSettingBytes && IsUtf8(text) &&
         std::none_of(text.begin(), text.end(), [](char letter) {
           return static_cast<unsigned char>(letter) < ' ' || letter == '\x7f';
         });
}

bool IsTopicPrefix(const std::string& text) {
  return !text.empty() && text.find_first_of("+#$ ") == std::string::npos && text.front() != '/' &&
         text.back() != '/';
}

SettingRow TextRow(std::string_view key, std::string BrokerSettings::*member, std::string_view expected,
                   std::function<bool(const std::string&)> fits) {
  return {key, expected,
          [member, fits = std::move(fits)](const nlohmann::json& value, BrokerSettings& settings) {
            if (!value.is_string()) return false;
            const auto& text = value.get_ref<const std::string&>();
            if (!IsUsableText(text) || !fits(text)) return false;
            settings.*member = text;
            return true;
          },
          [member](const BrokerSettings& settings) { return nlohmann::json(settings.*member); }};
}

SettingRow SwitchRow(std::string_view key, bool BrokerSettings::*member) {
  return {key, "true or false",
          [member](const nlohmann::json& value, BrokerSettings& settings) {
            if (!value.is_boolean()) return false;
            settings.*member = value.get<bool>();
            return true;
          },
          [member](const BrokerSettings& settings) { return nlohmann::json(settings.*member); }};
}

SettingRow PortRow() {
  return {"port", "a number from 1 to 65535",
          [](const nlohmann::json& value, BrokerSettings& settings) {
            if (!value.is_number_integer() || value < 1 || value > 65535) return false;
            settings.Port = value.get<std::uint16_t>();
            return true;
          },
          [](const BrokerSettings& settings) { return nlohmann::json(settings.Port); }};
}

}  // namespace

const std::vector<SettingRow>& SettingRows() {
  const auto any = [](const std::string& /*text*/) { return true; };
  const auto some = [](const std::string& text) { return !text.empty(); };
  constexpr std::string_view prefix = "words with / between, without +, #, $ and blanks";
  static const std::vector<SettingRow> rows = {
      TextRow("host", &BrokerSettings::Host,
              "the name or address of the broker, without its port and without brackets",
              [](const std::string& text) {
                // An IPv6 address has several colons.
                return !text.empty() && text.find_first_of("/ []") == std::string::npos &&
                       std::count(text.begin(), text.end(), ':') != 1;
              }),
      PortRow(),
      SwitchRow("tls", &BrokerSettings::Tls),
      TextRow("ca", &BrokerSettings::Ca, "the name of a file", any),
      TextRow("certificate", &BrokerSettings::Certificate, "the name of a file", any),
      TextRow("key", &BrokerSettings::Key, "the name of a file", any),
      TextRow("user", &BrokerSettings::User, "a name", any),
      TextRow("password_file", &BrokerSettings::PasswordFile, "the name of a file", any),
      TextRow("client_id", &BrokerSettings::ClientId, "a name", some),
      TextRow("prefix", &BrokerSettings::Prefix, prefix, IsTopicPrefix),
      TextRow("discovery_prefix", &BrokerSettings::DiscoveryPrefix, prefix, IsTopicPrefix),
      SwitchRow("signals", &BrokerSettings::Signals),
      SwitchRow("send", &BrokerSettings::Send),
  };
  return rows;
}

const SettingRow* FindSettingRow(std::string_view key) {
  const auto row = std::find_if(SettingRows().begin(), SettingRows().end(),
                                [&](const SettingRow& known) { return known.Key == key; });
  return row == SettingRows().end() ? nullptr : &*row;
}

}  // namespace keplo::broker
