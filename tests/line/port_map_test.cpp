#include "line/port_map.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "doubles/temp_folder.h"

namespace keplo {
namespace {

namespace fs = std::filesystem;

std::string Text(const PortMap& map) {
  std::string text;
  for (const MappedPort& port : map.Ports) {
    text += std::to_string(port.Port) + " " + KindName(port.Type) + " " + port.Device;
    for (const std::string& file : port.Files) text += file + " ";
    text += "|";
  }
  for (const std::string& mistake : map.Mistakes) text += mistake + "|";
  EXPECT_EQ(text.empty(), !map.WhyEmpty.empty()) << map.WhyEmpty;
  return text;
}

TEST(PortMap, KeepsTheLinesBesideAMistake) {
  EXPECT_EQ(
      Text(ParsePortMap("\xEF\xBB\xBF# mine\n9 = lirc:/dev/lirc0\r\n\n 1=serial:/dev/serial/by-id/x # board\n"
                        "30 = replay:a.mode2 b.mode2\n4 = mqtt:house/# # all\n"
                        "5=mqtt:$share/k/tele/+/RESULT send:cmnd/+/IRSend 1:bath 1:hall",
                        "p")),
      "1 serial /dev/serial/by-id/x|4 mqtt house/#|5 mqtt $share/k/tele/+/RESULT|9 lirc /dev/lirc0|"
      "30 replay a.mode2 b.mode2 |");
  EXPECT_EQ(Text(ParsePortMap("# 1 = serial:/dev/ttyS0\n", "p")), "");
  const std::pair<std::string, std::string> mistakes[] = {
      {"COM1 = serial:/dev/ttyS0", "expected a number from 1 to 30 in front of the equals sign"},
      {"31 = serial:/dev/ttyS0", "expected a number from 1 to 30 in front of the equals sign"},
      {"2 serial:/dev/ttyS0", "expected a line such as \"1 = serial:/dev/ttyS0\""},
      {"2 = usb:/dev/ttyUSB0", "expected serial:, lirc:, mqtt: or replay: after the equals sign"},
      {"2 = mqtt:a/b+/c",
       "expected a topic after mqtt:, in which + and # stand for whole levels, and # for the last ones"},
      {"2 = mqtt:a/# send:b/+",
       "expected a topic behind send:, with a + for the room only where the first topic has one"},
      {"2 = mqtt:a/+ 9:bath", "expected send:TOPIC, or a room such as 2:kitchen with a number from 1 to 8"},
      {"2 = mqtt:a/+ 1:bath 2:bath", "room bath has a number already; expected another"},
      {"2 = serial:/dev/ttyS1 /dev/ttyS2", "expected one device after serial:"},
      {"2 = lirc:lirc0", "expected the path of a device after lirc:"},
      {"2 = replay:", "expected the path of a recording after replay:"},
      {"1 = serial:/dev/ttyS1", "port 1 has a line already; expected another number"}};
  for (const auto& [line, expected] : mistakes) {
    EXPECT_EQ(Text(ParsePortMap("1 = serial:/dev/ttyS0\n" + line, "p")),
              "1 serial /dev/ttyS0|p:2: " + expected + "|");
  }
}

TEST(PortMap, NumbersWhatTheMachineHas) {
  const tests::TempFolder folder;
  const auto tty = [&](const std::string& name, const std::string& type) {
    fs::create_directories(folder.Path() / "sys/tty" / name / "device");
    if (!type.empty()) folder.Write("sys/tty/" + name + "/type", type + "\n");
  };
  fs::create_directories(folder.Path() / "sys/tty/tty1");
  for (const std::string name : {"ttyS0", "ttyS10", "ttyS9", "ttyS1"}) tty(name, name == "ttyS0" ? "0" : "4");
  fs::create_directories(folder.Path() / "sys/tty/console");
  folder.Write("sys/tty/console/active", "tty0 ttyS1\n");
  tty("ttyUSB0", "");
  fs::create_directories(folder.Path() / "sys/lirc/lirc0");
  const DeviceFolders folders{folder.Path() / "sys", "/dev"};
  EXPECT_EQ(Text(LoadPortMap(folder.Path(), folders)),
            "1 serial /dev/ttyS9|2 serial /dev/ttyS10|3 serial /dev/ttyUSB0|4 lirc /dev/lirc0|");
  for (int number = 1; number <= 30; ++number) tty("ttyUSB" + std::to_string(number), "");
  EXPECT_EQ(FindPorts(folders).Ports.size(), 30U);
  EXPECT_EQ(FindPorts(folders).LeftOut.size(), 5U);
  folder.Write("ports.conf", "7 = replay:/a b");
  EXPECT_EQ(Text(LoadPortMap(folder.Path(), folders)),
            "7 replay /a " + (folder.Path() / "b").string() + " |");
  std::filesystem::remove(folder.Path() / "ports.conf");
  ASSERT_EQ(mkfifo((folder.Path() / "ports.conf").c_str(), 0600), 0);
  EXPECT_EQ(LoadPortMap(folder.Path(), folders).Mistakes.size(), 1U);
}

}  // namespace
}  // namespace keplo
