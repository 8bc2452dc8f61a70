#include "host_program/keyboard.h"

#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "host_program/key_name.h"

namespace keplo::host {

namespace {

std::string AdviceOn(int error) {
  switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
      return "There is none: load it by modprobe uinput, and at each start by a line uinput in "
             "/etc/modules-load.d/uinput.conf.";
    case EACCES:
    case EPERM:
      return "Whoever runs the host has no right to it. The rule 70-keplo.rules, which an install brings to "
             "lib/udev/rules.d, gives it to the group input: sudo usermod -aG input $USER, and log in anew.";
    default:
      return std::generic_category().message(error) + ".";
  }
}

/// Describes the keyboard to the kernel: it has all keys with names, and repeats them.
struct Description {
  libevdev* Device = libevdev_new();
  Description() {
    libevdev_set_name(Device, "Keplo remote control");
    libevdev_enable_event_type(Device, EV_REP);
    for (unsigned code = 1; code < KEY_MAX; ++code) {
      if (IsKeyName(libevdev_event_code_get_name(EV_KEY, code))) {
        libevdev_enable_event_code(Device, EV_KEY, code, nullptr);
      }
    }
  }
  ~Description() { libevdev_free(Device); }
  Description(const Description&) = delete;
  Description& operator=(const Description&) = delete;
};

}  // namespace

void Keyboard::Unplug::operator()(libevdev_uinput* device) const { libevdev_uinput_destroy(device); }

Keyboard::Keyboard(const HostLog& log) : log_(log) {}

void Keyboard::PlugIn() {
  if (std::exchange(tried_, true)) return;
  const Description description;
  libevdev_uinput* device = nullptr;
  const int result =
      libevdev_uinput_create_from_device(description.Device, LIBEVDEV_UINPUT_OPEN_MANAGED, &device);
  device_.reset(device);
  if (result < 0) {
    log_.Write(LogLevel::Warning, "Keys cannot be pressed, since /dev/uinput cannot be used. " +
                                      AdviceOn(-result) + " Then start the host again.");
  }
}

void Keyboard::Write(unsigned code, int value) {
  libevdev_uinput_write_event(device_.get(), EV_KEY, code, value);
  libevdev_uinput_write_event(device_.get(), EV_SYN, SYN_REPORT, 0);
}

void Keyboard::Press(unsigned code, int place) {
  PlugIn();
  if (device_ != nullptr && down_.Press(code, place)) Write(code, 1);
}

void Keyboard::Release(int place) {
  for (const unsigned code : down_.Release(place)) Write(code, 0);
}

}  // namespace keplo::host
