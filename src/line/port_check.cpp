#include "line/port_check.h"

#include <filesystem>
#include <fstream>

#include "failure.h"
#include "formats/recording.h"
#include "line/device_access.h"
#include "line/lirc/lirc_line.h"
#include "line/rooms/room_line.h"
#include "line/serial/serial_port.h"

namespace keplo {

namespace {

namespace fs = std::filesystem;

/// The driver of a device or of the first one above it; the serial core puts devices of its own between the
/// two.
std::string DriverOf(const fs::path& device) {
  std::error_code error;
  for (fs::path at = fs::canonical(device, error); !error && at.has_relative_path(); at = at.parent_path()) {
    std::error_code none;
    std::string driver = fs::read_symlink(at / "driver", none).filename().string();
    if (!driver.empty() && driver != "port" && driver != "ctrl") return driver;
    std::ifstream facts(at / "uevent");
    const std::string key = "DRV_NAME=";
    for (std::string line; std::getline(facts, line);) {
      if (line.rfind(key, 0) == 0) return line.substr(key.size());
    }
  }
  return {};
}

/// What hangs on an adapter is not known, and an open pulses its lines: boards reset, modems wake. So it is
/// told without one.
PortCheck CheckUsbPort(const std::string& device, const fs::path& classes) {
  PortCheck check;
  check.Why = SerialPort::Foresee(device).Why;
  check.Opens = check.Why.empty();
  if (check.Opens) check.Why = WhyUnfit(device, true, classes);
  return check;
}

PortCheck CheckSerial(DeviceCalls& calls, const MappedPort& port, const fs::path& classes) {
  const bool isUsb = IsUsbPort(port.Device, classes);
  PortCheck check = isUsb ? CheckUsbPort(port.Device, classes) : PortCheck();
  check.Driver = DriverOf(classes / "tty" / KernelName(port.Device) / "device");
  if (isUsb) return check;
  Refusal refusal;
  const auto opened = SerialPort::Open(calls, port.Device, refusal);
  check.Why = refusal.Why;
  if (!opened) return check;
  check.Opens = true;
  check.Sends = true;
  check.Receives = opened->HasModemLines();
  check.Why = WhyUnfit(port.Device, opened->HasModemLines(), classes);
  return check;
}

PortCheck CheckLirc(DeviceCalls& calls, const MappedPort& port, const fs::path& kernelDevice) {
  PortCheck check;
  check.Driver = DriverOf(kernelDevice);
  const std::int16_t receiver = 0;
  LircLine line(calls, port.Device, receiver, {}, {});
  check.Opens = line.OpenCom(port.Port) == 1;
  check.Receives = check.Opens && line.Abilities().Receives;
  check.Sends = check.Opens && line.Abilities().Sends;
  check.Why = check.Opens ? DescribeInabilities(port.Device, line.Abilities()) : line.WhyNot();
  return check;
}

/// Its connection is there or fails within seconds.
PortCheck CheckRooms(DeviceCalls& calls, const MappedPort& port, const OpenRoomMessages& rooms) {
  constexpr std::chrono::seconds kLongestLogin{5};
  PortCheck check;
  const std::int16_t receiver = 0;
  RoomLine line(calls, port.Rooms, rooms, receiver, {}, {});
  if (line.OpenCom(port.Port) == 1) line.WaitUntilHeard(kLongestLogin);
  check.Why = line.WhyNot();
  check.Opens = check.Receives = check.Why.empty();
  check.Sends = check.Opens && !port.Rooms.SendTopic.empty();
  if (check.Opens && !check.Sends)
    check.Why = port.Device + " has no sender. Add send:TOPIC to its line in ports.conf.";
  return check;
}

PortCheck CheckReplay(const MappedPort& port) {
  PortCheck check;
  try {
    for (const std::string& file : port.Files) LoadRecording(file);
    check.Opens = check.Receives = true;
    check.Why = "It plays recordings; what is sent goes nowhere.";
  } catch (const Failure& failure) {
    check.Why = failure.what();
  }
  return check;
}

}  // namespace

PortCheck CheckPort(DeviceCalls& calls, const MappedPort& port, const DeviceFolders& folders,
                    const OpenRoomMessages& rooms) {
  switch (port.Type) {
    case MappedPort::Kind::Serial:
      return CheckSerial(calls, port, folders.Sys);
    case MappedPort::Kind::Lirc:
      return CheckLirc(calls, port, folders.Sys / "lirc" / KernelName(port.Device) / "device");
    case MappedPort::Kind::Mqtt:
      return CheckRooms(calls, port, rooms);
    case MappedPort::Kind::Replay:
      break;
  }
  return CheckReplay(port);
}

}  // namespace keplo
