#pragma once

#include <memory>
#include <string>

#include "host_program/host_log.h"
#include "host_program/keys_down.h"

struct libevdev_uinput;

namespace keplo::host {

/// A virtual keyboard of the kernel. The kernel repeats keys that are down, and releases them when the host
/// ends.
class Keyboard {
 public:
  explicit Keyboard(const HostLog& log);

  /// Creates the keyboard, unless that was tried before. Programs take a moment to find it, so call this well
  /// before a key is pressed. A failure is logged with advice.
  void PlugIn();
  /// Presses a key, unless it is already down.
  /// @param place of the remote's key that holds it
  void Press(unsigned code, int place);
  /// Releases the keys that only this place holds.
  void Release(int place);

 private:
  struct Unplug {
    void operator()(libevdev_uinput* device) const;
  };

  void Write(unsigned code, int value);

  const HostLog& log_;
  std::unique_ptr<libevdev_uinput, Unplug> device_;
  bool tried_ = false;
  KeysDown down_;
};

}  // namespace keplo::host
