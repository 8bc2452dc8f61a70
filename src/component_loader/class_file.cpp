#include "component_loader/class_file.h"

#include <cerrno>
#include <nlohmann/json.hpp>

#include "disk/json_file.h"
#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "disk/user_data_folder.h"
#include "failure.h"

namespace keplo {

namespace {

std::filesystem::path DataFolder() {
  if (auto folder = UserDataFolder()) return *std::move(folder);
  throw Failure(ENOENT, "There is no user data folder to register components in: set HOME or XDG_DATA_HOME.");
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
  std::error_code ignored;  // if it fails, so will writing the file
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
  return ComponentNamedBy(ReadJsonFile(path), path);
}

std::filesystem::path ComponentNamedBy(std::string_view text, const std::filesystem::path& classFile) {
  const std::string advice = " Register the component again.";
  nlohmann::json json;
  try {
    json = ParseJsonObject(text);
  } catch (const Failure& failure) {
    throw Failure(failure.Number(),
                  classFile.string() + " is no class file: it " + failure.what() + "." + advice);
  }
  const auto component = json.find("component");
  if (component == json.end() || !component->is_string() ||
      !std::filesystem::path(component->get<std::string>()).is_absolute()) {
    throw Failure(EINVAL, classFile.string() + " names no component with an absolute path." + advice);
  }
  return component->get<std::string>();
}

}  // namespace keplo
