#include "keplo_mod.h"

namespace keplo {

namespace {

constexpr const char* kConfigFile = "keplo.cfg";

}  // namespace

const std::string VersionText = KEPLO_VERSION;

KeploMod::KeploMod(const std::filesystem::path& appPath, FileSystem& files)
    : AppPath(appPath), Store(appPath / kConfigFile, files) {}

KeploMod::KeploMod(const std::filesystem::path& appPath) : AppPath(appPath), Store(appPath / kConfigFile) {}

}  // namespace keplo
