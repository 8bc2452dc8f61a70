#include "config/valid_names.h"

#include <algorithm>

#include "config/cfg_text.h"

namespace keplo {

namespace {

constexpr std::size_t kShortestCode = 3;  // a G and two digits

bool IsNameCharacter(char character) {
  const char lower = LowerCase(character);
  return (lower >= 'a' && lower <= 'z') || (character >= '0' && character <= '9') || character == '-' ||
         character == '_';
}

}  // namespace

bool IsValidName(std::string& name) {
  TrimBoth(name);
  return std::all_of(name.begin(), name.end(), IsNameCharacter);
}

bool IsValidCode(std::string& code) {
  TrimBoth(code);
  return code.size() >= kShortestCode && code.find_first_of("xX") == std::string::npos &&
         std::count(code.begin(), code.end(), 'G') <= 1;
}

}  // namespace keplo
