#include "line/port_line.h"

#include <gtest/gtest.h>

#include "simulated_port.h"

namespace keplo {
namespace {

TEST(PortLine, FindsTheDeviceOfItsPortHoweverLateItComes) {
  auto calls = std::make_unique<tests::SimulatedPort>();
  tests::SimulatedPort& port = *calls;
  PortMap map = FindPorts({"/nowhere", "/nowhere"});
  const std::int16_t receiver = 0;
  std::vector<std::string> told;
  PortLine line(
      std::move(calls), [&] { return map; }, receiver, {},
      [&](const std::string& text) { told.push_back(text); });
  const auto wait = [&] {
    const auto rest = line.MayRest();
    EXPECT_TRUE(rest > std::chrono::milliseconds(100) && rest < std::chrono::seconds(5)) << rest.count();
    port.SleepUntil(port.Now() + rest);
    EXPECT_EQ(line.DCD(), 1);
  };
  const std::int32_t ofSettings = 2;
  line.FollowSettings(&ofSettings, {});
  for (const std::int32_t probed : {1, 2, 3}) EXPECT_EQ(line.OpenCom(probed), 0);
  line.IRSend("\xFF", 560, 0);
  EXPECT_FALSE(line.Sent() || line.WhyNot() != map.WhyEmpty || map.WhyEmpty.empty());
  wait();
  EXPECT_TRUE(told.empty());

  map = {};
  map.Ports = {{1, MappedPort::Kind::Serial, tests::kSimulatedDevice, {}, {}}};
  wait();
  wait();
  const std::string notThat = "COM 2 has no device on this machine. keplo ports lists those that have.";
  EXPECT_EQ(told, std::vector{notThat});
  map.Ports.push_back({2, MappedPort::Kind::Serial, tests::kSimulatedDevice, {}, {}});
  port.There = false;
  wait();
  EXPECT_EQ(told.back(), line.WhyNot());
  port.There = port.Break = true;
  wait();
  EXPECT_EQ(told.back(), tests::kSimulatedDevice + " is there now.");
  EXPECT_TRUE(port.Rts && !port.Break);
  EXPECT_EQ(told.size(), 3U);
  EXPECT_EQ(line.WhyNot(), "");
}

}  // namespace
}  // namespace keplo
