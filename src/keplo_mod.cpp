#include "keplo_mod.h"

namespace keplo {

const std::string VersionText = KEPLO_VERSION;

KeploMod::KeploMod(const std::filesystem::path& appPath, FileSystem& files)
    : AppPath(appPath), Store(appPath / "keplo.cfg", files) {}

}  // namespace keplo
