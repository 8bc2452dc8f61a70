#include "line/device_access.h"

#include <grp.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace keplo {

namespace {

std::string NameOfGroup(gid_t number) {
  const group* found = getgrgid(number);
  return found == nullptr ? std::to_string(number) : found->gr_name;
}

/// Whether this program runs as a member of a group.
bool IsMember(gid_t number) {
  if (getegid() == number) return true;
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
  const int count = getgroups(static_cast<int>(groups.size()), groups.data());
  return std::find(groups.begin(), groups.begin() + std::max(count, 0), number) !=
         groups.begin() + std::max(count, 0);
}

/// The group of the node is the one to join, where it may read and write and that is what is missing.
std::string WhyForbidden(const std::string& device) {
  constexpr mode_t kGroupMay = S_IRGRP | S_IWGRP;
  struct stat node {};
  const bool known = stat(device.c_str(), &node) == 0;
  if (!known || node.st_gid == 0 || (node.st_mode & kGroupMay) != kGroupMay) {
    return device + " may be opened by its owner only. A udev rule can give it to a group.";
  }
  const std::string group = NameOfGroup(node.st_gid);
  if (geteuid() == 0 || IsMember(node.st_gid)) {
    return device +
           " is kept from this program by the service or the container that it runs in, though not " +
           "from the group " + group +
           ". Allow the device there, as with DeviceAllow=, and start the service anew: it may know only the "
           "kinds of devices that were there when it began.";
  }
  return device + " belongs to the group " + group + ". Join it with: sudo usermod -aG " + group +
         " $USER, then log in again.";
}

int ProcessNumber(const std::filesystem::path& folder) {
  const std::string name = folder.filename().string();
  int number = 0;  // stays so for a name that is none
  std::from_chars(name.data(), name.data() + name.size(), number);
  return number;
}

/// @return none where the system does not show it
std::optional<bool> HasOpen(const std::filesystem::path& process, const std::filesystem::path& node) {
  std::error_code error;
  std::filesystem::directory_iterator at(process / "fd", error);
  if (error) return std::nullopt;
  for (const std::filesystem::directory_iterator end; !error && at != end; at.increment(error)) {
    std::error_code unread;
    if (std::filesystem::read_symlink(at->path(), unread) == node) return true;
  }
  return false;
}

}  // namespace

std::string WhyNoAccess(const std::string& device, int error) {
  switch (error) {
    case EACCES:
    case EPERM:
      return WhyForbidden(device);
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return device + " is not there. Plug it in, or load its driver.";
    case ENOTTY:
      return device + " is no serial port. Correct ports.conf.";
    default:
      return device + " cannot be opened: " + std::strerror(error) +
             ". Correct ports.conf, or choose another port.";
  }
}

Refusal WhyBusy(const std::string& device, const std::string& holder) {
  return {device + " is in use by " + (holder.empty() ? "another program" : holder) +
              ". End that program, or choose another port.",
          true};
}

std::string NameOfProcess(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return (name.empty() ? "a program" : name) + " (process " + std::to_string(process) + ")";
}

std::string HolderOfDevice(const std::string& device) {
  std::error_code error;
  const std::filesystem::path node = std::filesystem::canonical(device, error);
  if (error) return {};
  for (std::filesystem::directory_iterator at("/proc", error), end; !error && at != end;
       at.increment(error)) {
    const int process = ProcessNumber(at->path());
    if (process > 0 && process != getpid() && HasOpen(at->path(), node).value_or(false)) {
      return NameOfProcess(process);
    }
  }
  return {};
}

std::string HolderOfLock(const std::string& device) {
  struct stat node {};
  if (stat(device.c_str(), &node) != 0) return {};
  std::ifstream locks("/proc/locks");
  std::string line;
  while (std::getline(locks, line)) {
    std::istringstream words(line);
    std::string number, kind, advisory, access, file;
    int process = 0;
    if (!(words >> number >> kind >> advisory >> access >> process >> file) || kind != "FLOCK") continue;
    unsigned majorNumber = 0, minorNumber = 0;
    unsigned long inode = 0;
    if (std::sscanf(file.c_str(), "%x:%x:%lu", &majorNumber, &minorNumber, &inode) != 3) continue;
    if (makedev(majorNumber, minorNumber) == node.st_dev && inode == node.st_ino && process != getpid())
      return NameOfProcess(process);
  }
  return {};
}

std::optional<bool> HasDeviceOpen(int process, const std::string& device) {
  std::error_code error;
  const std::filesystem::path node = std::filesystem::canonical(device, error);
  if (error) return std::nullopt;
  return HasOpen("/proc/" + std::to_string(process), node);
}

bool IsNoTerminal(const std::string& device) {
  struct stat node {};
  if (stat(device.c_str(), &node) != 0) return false;
  if (!S_ISCHR(node.st_mode)) return true;
  const std::string number = std::to_string(major(node.st_rdev)) + ":" + std::to_string(minor(node.st_rdev));
  std::error_code error;  // pseudo-terminals are not listed there
  const auto subsystem = std::filesystem::read_symlink("/sys/dev/char/" + number + "/subsystem", error);
  return !error && subsystem.filename() != "tty";
}

std::string KernelName(const std::string& device) {
  std::error_code error;
  const std::filesystem::path node = std::filesystem::weakly_canonical(device, error);
  return (error ? std::filesystem::path(device) : node).filename().string();
}

bool IsUsbPort(const std::string& device, const std::filesystem::path& classes) {
  std::error_code error;
  const auto place =
      std::filesystem::weakly_canonical(classes / "tty" / KernelName(device) / "device", error);
  return place.string().find("/usb") != std::string::npos;
}

std::string WhyUnfit(const std::string& device, bool hasModemLines, const std::filesystem::path& classes) {
  if (!hasModemLines) {
    return device +
           " has no modem lines: it receives nothing and does not send on DTR. Use it for TxD and zone "
           "hardware, and another port to receive.";
  }
  if (!IsUsbPort(device, classes)) return {};
  return device +
         " is a USB adapter: reading its lines takes 1 ms and switching them up to 11 ms, so it serves "
         "zone hardware only. Use a serial port of the board or of a PCIe card, or an infrared "
         "receiver that the kernel knows.";
}

}  // namespace keplo
