#pragma once

#include <string>

#include "line/device_calls.h"
#include "line/port_map.h"
#include "line/rooms/room_messages.h"

namespace keplo {

/// What a port of this machine can do.
struct PortCheck {
  std::string Driver;  // of the kernel; empty if it tells none
  bool Opens = false;
  bool Receives = false;
  bool Sends = false;
  std::string Why;  // what stands in the way and what to do, in one sentence; empty if nothing does
};

/// Opens a port for a moment and asks its device. One that another program uses, or that is on USB, is left
/// alone.
/// @param rooms opens the messages of receivers on a broker
PortCheck CheckPort(DeviceCalls& calls, const MappedPort& port, const DeviceFolders& folders = {},
                    const OpenRoomMessages& rooms = {});

}  // namespace keplo
