#include "line/port_line.h"

#include <gtest/gtest.h>

#include "line_script.h"
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
  EXPECT_EQ(line.OpenCom(3), 0) << "while the machine has none of that number";
  port.Rts = !(port.Break = true);
  wait();
  EXPECT_EQ(told.back(), "COM 2 is " + tests::kSimulatedDevice + ".");
  EXPECT_TRUE(port.Rts && !port.Break);
  EXPECT_EQ(told.size(), 4U);
  EXPECT_EQ(line.WhyNot(), "");
}

TEST(PortLine, HandsOnWhatItsDeviceIsAskedFor) {
  auto calls = std::make_unique<tests::SimulatedPort>();
  tests::SimulatedPort& port = *calls;
  PortMap map;
  map.Ports = {{1, MappedPort::Kind::Serial, tests::kSimulatedDevice, {}, {}}};
  const std::int16_t receiver = 0;
  PortLine line(std::move(calls), [&] { return map; }, receiver, {}, {});
  const auto heard = [&](const std::string& script) {
    return tests::Script(port, line, script,
                         [&](const std::string& press) { port.Play(tests::ReadPlayed(press).Lengths); });
  };
  EXPECT_EQ(heard("d m10 r10 z3 z s560 u1000 d m10"),
            "1 [] /0 @0; 0 [] /0 @0; zone 0 zone 9 not sent 1 [] /0 @1000; ")
      << "while no port is open";
  ASSERT_EQ(line.OpenCom(1), 1);
  port.Answers = {{std::chrono::milliseconds(2), '\x1A'}, {std::chrono::milliseconds(2), '\x1A'}};
  EXPECT_EQ(heard("w100000 p900,500,700,. w100 d m40 z3 z s560 u1000 d w1000000 p600,9000,400,. r40"),
            "0 [] 15 9 13 283/40 @117649; zone 1 zone 3 sent 1 1 [] 7 313/40 @1155328; ");
}

}  // namespace
}  // namespace keplo
