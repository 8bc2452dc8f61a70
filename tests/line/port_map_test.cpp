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
