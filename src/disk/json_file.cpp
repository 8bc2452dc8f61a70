#include "disk/json_file.h"

#include <cerrno>
#include <nlohmann/json.hpp>
#include <system_error>

#include "disk/posix_file_system.h"
#include "failure.h"

namespace keplo {

std::string ReadJsonFile(const std::filesystem::path& path) {
  std::string text;
  try {
    text = PosixFileSystem().Read(path, kMostJsonBytes + 1);
  } catch (const Failure& failure) {
    const int number = failure.Number();
    const std::string reason =
        number == EINVAL ? "it is no regular file" : std::generic_category().message(number);
    throw Failure(number, path.string() + " cannot be read: " + reason);
  }
  if (text.size() <= kMostJsonBytes) return text;
  throw Failure(EFBIG, path.string() + " cannot be read: it is larger than the " +
                           std::to_string(kMostJsonBytes) + " bytes that it may have");
}

nlohmann::json ParseJsonObject(std::string_view text) {
  const auto bounded = [](int depth, nlohmann::json::parse_event_t /*event*/, nlohmann::json& /*value*/) {
    if (depth <= kMostJsonLevels) return true;
    throw Failure(EINVAL, "is nested deeper than " + std::to_string(kMostJsonLevels) + " levels");
  };
  nlohmann::json object = nlohmann::json::parse(text, bounded, /*allow_exceptions=*/false);
  if (object.is_discarded()) throw Failure(EINVAL, "is not whole JSON");
  if (!object.is_object()) throw Failure(EINVAL, "is JSON, but no object");
  return object;
}

}  // namespace keplo
