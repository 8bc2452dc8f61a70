#pragma once

#include <memory>
#include <string>

#include "host_program/host_log.h"
#include "host_program/keys_down.h"

struct libevdev_uinput;

namespace keplo::host {

/// A keyboard of the kernel's, whose keys remotes press. The kernel repeats a key that is down, and lets it
/// go however the host ends.
class Keyboard {
 public:
  explicit Keyboard(const HostLog& log);

  /// Makes the keyboard known to the system, unless that was tried before. Programs need a moment to find it,
  /// so do this before a key is pressed. What does not work is logged with the way out.
  void PlugIn();
  /// A key that is down stays down.
  /// @param place of the key of a remote that holds it
  void Press(unsigned code, int place);
  /// Lets the keys go that only this place holds.
  void Release(int place);
  /// Where its events can be read; empty without one.
  std::string DeviceNode() const;

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
