#include "host_program/find_component.h"

#include <cerrno>

#include "component_loader/class_file.h"
#include "failure.h"
#include "host/component_entry.h"

namespace keplo::host {

namespace {

constexpr const char* kFileName = "inputkeplo.so";

bool IsRegistered() {
  try {
    return std::filesystem::exists(ClassFilePath(kInputKeploClass));
  } catch (const Failure&) {
    return false;  // such as a service without a home folder
  }
}

}  // namespace

std::filesystem::path FindComponent(const std::filesystem::path& named) {
  if (named.empty() && IsRegistered()) return ReadClassFile(kInputKeploClass);
  return FindComponentToRegister(named);
}

std::filesystem::path FindComponentToRegister(const std::filesystem::path& named) {
  if (!named.empty()) return named;
  const std::filesystem::path programs = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::filesystem::path beside = programs / kFileName;
  const std::filesystem::path installed = programs.parent_path() / KEPLO_LIBDIR / "keplo" / kFileName;
  for (const auto& file : {beside, installed}) {
    if (std::filesystem::exists(file)) return file;
  }
  throw Failure(ENOENT, "There is no component of " + std::string(kInputKeploClass) + ": neither " +
                            beside.string() + " nor " + installed.string() +
                            " is there. Name it by --component.");
}

}  // namespace keplo::host
