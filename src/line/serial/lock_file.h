#pragma once

#include <string>

namespace keplo {

/// The lock files by which older programs share serial ports: /var/lock/LCK..NAME, with the number of the
/// process that holds the port.

/// The program whose lock file names the device and that still runs; empty if there is none, or if the
/// process of that number has the device not open.
std::string HolderOfLockFile(const std::string& device);
/// Writes the lock file of this process.
/// @return its path; empty where the folder may not be written, which is no failure
std::string TakeLockFile(const std::string& device);
/// Removes a lock file that TakeLockFile wrote.
void ReleaseLockFile(const std::string& path);

}  // namespace keplo
