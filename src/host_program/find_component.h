#pragma once

#include <filesystem>

namespace keplo::host {

/// The plug-in's component: the named file, otherwise the registered one, otherwise the one beside this
/// program or in the library folder of its installation.
/// @throws Failure with the files that were tried
std::filesystem::path FindComponent(const std::filesystem::path& named);

/// The component to register: like FindComponent, but ignores the registered one, so that an invalid
/// registration can be corrected.
/// @throws Failure with the files that were tried
std::filesystem::path FindComponentToRegister(const std::filesystem::path& named);

}  // namespace keplo::host
