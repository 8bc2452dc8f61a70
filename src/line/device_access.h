#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace keplo {

/// Why a device did not open.
struct Refusal {
  std::string Why;     // in one sentence that says what to do; empty if nothing stands in the way
  bool InUse = false;  // another program has it
};

/// Why a device cannot be opened, in one sentence that says what to do.
/// @param error the errno of the open
std::string WhyNoAccess(const std::string& device, int error);

/// Why a device that another program uses cannot be opened.
/// @param holder the program, if it is known
Refusal WhyBusy(const std::string& device, const std::string& holder);

/// A running process as "NAME (process N)".
std::string NameOfProcess(int process);

/// The program, other than this one, that has a device open, as NameOfProcess tells it; empty if the system
/// shows none.
std::string HolderOfDevice(const std::string& device);

/// The program, other than this one, that has a device locked by flock, which the system shows of programs of
/// all users; empty if none has.
std::string HolderOfLock(const std::string& device);

/// Whether a process has a device open.
/// @return none if the system does not show that to this program
std::optional<bool> HasDeviceOpen(int process, const std::string& device);

/// Whether a node is known to be of another kind than a terminal.
bool IsNoTerminal(const std::string& device);

/// The name of a device in the kernel's folders; nodes may be links, such as those below /dev/serial/by-id.
std::string KernelName(const std::string& device);

/// Whether a serial port is an adapter on USB.
/// @param classes where the kernel lists its devices by classes
bool IsUsbPort(const std::string& device, const std::filesystem::path& classes = "/sys/class");

/// What a serial port cannot be used for, in a sentence or two; empty for one that is fit for everything.
/// @param hasModemLines as the open port tells
std::string WhyUnfit(const std::string& device, bool hasModemLines,
                     const std::filesystem::path& classes = "/sys/class");

}  // namespace keplo
