#include "keplo_mod.h"

#include <utility>

#include "disk/posix_file_system.h"

namespace keplo {

const std::string VersionText = KEPLO_VERSION;

KeploMod::KeploMod(const std::filesystem::path& appPath, FileSystem& files)
    : AppPath(appPath), Store(appPath / "keplo.cfg", files) {}

KeploMod::KeploMod(const std::filesystem::path& appPath, std::unique_ptr<FileSystem> files)
    : KeploMod(appPath, *files) {
  ownFiles_ = std::move(files);
}

KeploMod::KeploMod(const std::filesystem::path& appPath)
    : KeploMod(appPath, std::make_unique<PosixFileSystem>()) {}

}  // namespace keplo
