#pragma once

#include <string_view>

namespace keplo {

inline constexpr std::string_view kWebPage = "https://keplo.example/inputkeplo";
inline constexpr std::string_view kSupportMail = "support@keplo.example";

}  // namespace keplo
