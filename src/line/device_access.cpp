#include "line/device_access.h"

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace keplo {

namespace {

/// The group of a device node, which is the one to join.
std::string GroupOf(const std::string& device) {
  struct stat node {};
  if (stat(device.c_str(), &node) != 0) return {};
  const group* owner = getgrgid(node.st_gid);
  return owner == nullptr ? std::to_string(node.st_gid) : owner->gr_name;
}

std::string WhyForbidden(const std::string& device) {
  const std::string group = GroupOf(device);
  if (group.empty() || group == "root") {
    return device + " may be opened by root only. A udev rule can give it to a group.";
  }
  return device + " belongs to the group " + group + ". Join it with: sudo usermod -aG " + group +
         " $USER, then log in again.";
}

int ProcessNumber(const std::filesystem::path& folder) {
  const std::string name = folder.filename().string();
  int number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  return error == std::errc() && end == name.data() + name.size() ? number : 0;
}

bool HasOpen(const std::filesystem::path& process, const std::filesystem::path& node) {
  std::error_code error;
  for (std::filesystem::directory_iterator at(process / "fd", error), end; !error && at != end;
       at.increment(error)) {
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
    default:
      return device + " cannot be opened: " + std::strerror(error) + ".";
  }
}

std::string WhyBusy(const std::string& device, const std::string& holder) {
  return device + " is in use by " + (holder.empty() ? "another program" : holder) +
         ". End that program, or choose another port.";
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
    if (process > 0 && process != getpid() && HasOpen(at->path(), node)) return NameOfProcess(process);
  }
  return {};
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

std::string WhyNoModemLines(const std::string& device) {
  return device +
         " is a USB adapter: reading its lines takes 1 ms and switching them up to 11 ms, so it serves "
         "zone hardware only. Use a serial port of the board or of a PCIe card, or an infrared "
         "receiver that the kernel knows.";
}

}  // namespace keplo
