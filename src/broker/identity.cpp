#include "broker/identity.h"

#include <algorithm>
#include <cerrno>
#include <random>

#include "disk/json_file.h"
#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"

namespace keplo::broker {

namespace {

constexpr std::size_t kDigits = 8;
constexpr std::string_view kHexDigits = "0123456789abcdef";

std::string NewIdentity() {
  std::random_device random;
  std::uniform_int_distribution<std::size_t> digit(0, kHexDigits.size() - 1);
  std::string identity(kDigits, '0');
  for (char& letter : identity) letter = kHexDigits[digit(random)];
  return identity;
}

std::string ReadIdentity(const std::filesystem::path& file) {
  std::string text = ReadJsonFile(file);
  text.resize(std::min(text.find_first_of(" \r\n"), text.size()));
  if (text.size() == kDigits && text.find_first_not_of(kHexDigits) == std::string::npos) return text;
  throw Failure(EINVAL, file.string() +
                            " does not hold eight hexadecimal digits. Put back the ones that Home Assistant "
                            "knows this host by, or remove the file to begin anew.");
}

}  // namespace

std::filesystem::path IdentityFile(const std::filesystem::path& appPath) { return appPath / "broker.id"; }

std::string IdentityOf(const std::filesystem::path& appPath) {
  const std::filesystem::path file = IdentityFile(appPath);
  try {
    return ReadIdentity(file);
  } catch (const Failure& failure) {
    if (failure.Number() != ENOENT) throw;
  }
  PosixFileSystem files;
  try {
    CreateFile(files, file, NewIdentity() + "\n");
  } catch (const Failure& failure) {
    throw CannotBeWritten(file, failure);
  }
  // Another program may have created the file first.
  return ReadIdentity(file);
}

std::string SafeForTopic(std::string_view text) {
  std::string safe;
  for (const char letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    const bool plain = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                       (letter >= '0' && letter <= '9') || letter == '-';
    if (plain) {
      safe += letter;
    } else {
      safe += '_';
      safe += kHexDigits[byte / 16];
      safe += kHexDigits[byte % 16];
    }
  }
  return safe.empty() ? "_" : safe;
}

}  // namespace keplo::broker
