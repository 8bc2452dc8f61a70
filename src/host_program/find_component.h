#pragma once

#include <filesystem>

namespace keplo::host {

/// The plug-in's component: the named file, else the registered one, else the one beside this program or in
/// the library folder of its installation.
/// @throws Failure that tells what was looked for
std::filesystem::path FindComponent(const std::filesystem::path& named);

/// The component that is to be registered: as FindComponent, without a look at what is registered, so that a
/// registration that leads nowhere can be mended.
/// @throws Failure that tells what was looked for
std::filesystem::path FindComponentToRegister(const std::filesystem::path& named);

}  // namespace keplo::host
