#include "component_loader/class_file.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"
#include "program/environment.h"

namespace keplo {

namespace {

std::filesystem::path DataFolder() {
  if (auto folder = UserDataFolder()) return *std::move(folder);
  throw Failure(ENOENT, "There is no user data folder to register components in: set HOME or XDG_DATA_HOME.");
}

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw Failure(errno, path.string() + " cannot be read: " + std::strerror(errno));
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::filesystem::path ClassFilePath(const std::string& className) {
  return DataFolder() / "velmora" / "classes" / (className + ".json");
}

void WriteClassFile(const std::string& className, const std::filesystem::path& component) {
  nlohmann::ordered_json json;
  json["class"] = className;
  json["component"] = component.string();
  const std::filesystem::path path = ClassFilePath(className);
  std::error_code ignored;  // a folder that cannot be made is told by the writing
  std::filesystem::create_directories(path.parent_path(), ignored);
  PosixFileSystem files;
  try {
    ReplaceFile(files, path, json.dump(2) + "\n")->Flush();
  } catch (const Failure& failure) {
    throw CannotBeWritten(path, failure);
  }
}

void RemoveClassFile(const std::string& className) {
  const std::filesystem::path path = ClassFilePath(className);
  std::error_code error;
  std::filesystem::remove(path, error);
  if (error) throw Failure(error.value(), path.string() + " cannot be removed: " + error.message());
}

std::filesystem::path ReadClassFile(const std::string& className) {
  const std::filesystem::path path = ClassFilePath(className);
  const auto json = nlohmann::json::parse(ReadText(path), nullptr, false);
  const std::string advice = " Register the component again.";
  if (json.is_discarded() || !json.is_object()) {
    throw Failure(EINVAL, path.string() + " is no class file: it is not whole JSON." + advice);
  }
  const auto component = json.find("component");
  if (component == json.end() || !component->is_string() ||
      !std::filesystem::path(component->get<std::string>()).is_absolute()) {
    throw Failure(EINVAL, path.string() + " names no component with an absolute path." + advice);
  }
  return component->get<std::string>();
}

}  // namespace keplo
