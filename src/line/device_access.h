#pragma once

#include <string>

namespace keplo {

/// Why a device cannot be opened, in one sentence that says what to do.
/// @param error the errno of the open
std::string WhyNoAccess(const std::string& device, int error);

/// Why a device that another program uses cannot be opened.
/// @param holder the program, if it is known
std::string WhyBusy(const std::string& device, const std::string& holder);

/// A running process as "NAME (process N)".
std::string NameOfProcess(int process);

/// The program, other than this one, that has a device open, as NameOfProcess tells it; empty if the system
/// shows none.
std::string HolderOfDevice(const std::string& device);

}  // namespace keplo
