#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <unistd.h>

#include <thread>

#include "line/serial/serial_line.h"
#include "signal/zone_link.h"

namespace keplo {
namespace {

TEST(TerminalLine, SendsMoreThanAPortTakesAtOnceAndAsksZonesBesideIt) {
  KernelCalls calls;  // a terminal has all of a port but its modem lines
  const DeviceDescriptor partner(calls, posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_TRUE(grantpt(partner.Get()) == 0 && unlockpt(partner.Get()) == 0);
  std::string arrived;
  std::thread listening([&] {
    pollfd input = {partner.Get(), POLLIN, 0};
    for (char byte = 0; poll(&input, 1, 60'000) == 1 && read(partner.Get(), &byte, 1) == 1;) {
      arrived += byte;
      const bool asked = byte == 'P' || byte == 'Z';
      const std::string answer = !asked                                                    ? ""
                                 : arrived.find(byte) + 1 == arrived.size() && byte == 'P' ? "x"
                                                                                           : "\x1A";
      EXPECT_EQ(write(partner.Get(), answer.data(), answer.size()), std::ssize(answer));
    }
  });
  {
    const std::int16_t receiver = 0;
    SerialLine line(calls, ptsname(partner.Get()), receiver, {}, {});
    EXPECT_EQ(line.OpenCom(1), 1) << line.WhyNot();
    line.IRSend(std::string(3, '\xFF'), 20'000, 1);
    EXPECT_TRUE(line.Sent());
    EXPECT_EQ(line.DCD(), 1) << "at rest, not gone";
    line.IRSend("\xFF", 560, 0);
    EXPECT_FALSE(line.Sent()) << "no DTR";
    EXPECT_EQ(QueryZone(line), 3);
    EXPECT_TRUE(SendZone(line, 3));
  }
  listening.join();
  EXPECT_EQ(arrived.substr(0, 6'146), std::string(6'144, '\x5B') + "PP") << "a mark of 480 ms";
}

}  // namespace
}  // namespace keplo
