#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <thread>

#include "line/serial/serial_line.h"
#include "signal/zone_link.h"

namespace keplo {
namespace {

/// A terminal has all of a port but its modem lines.
struct TerminalCalls : KernelCalls {
  int Ioctl(int descriptor, unsigned long request, void* argument) override {
    if (request == TIOCMBIS || request == TIOCMBIC) return 0;
    if (request != TIOCMGET) return KernelCalls::Ioctl(descriptor, request, argument);
    *static_cast<int*>(argument) = TIOCM_CD;
    return 0;
  }
};

struct TerminalLineTest : ::testing::Test {
  int Partner = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  TerminalCalls Calls;
  std::string Asked;
  std::int16_t Receiver = 0;

  void SetUp() override { ASSERT_TRUE(grantpt(Partner) == 0 && unlockpt(Partner) == 0); }
  void TearDown() override { close(Partner); }
  /// What arrives at the other end until so many bytes are there.
  std::string Arrives(std::size_t count) const {
    std::string bytes;
    pollfd input = {Partner, POLLIN, 0};
    while (bytes.size() < count && poll(&input, 1, 60'000) == 1) {
      char byte = 0;
      if (read(Partner, &byte, 1) != 1) break;
      bytes += byte;
    }
    return bytes;
  }
};

TEST_F(TerminalLineTest, SendsCharactersThatFillTheBufferOfThePortAndAsksZonesBesideIt) {
  // A mark of 480 ms is more than the kernel takes at once.
  const std::size_t characters = 6'144;
  std::string sent;
  std::thread partner([&] {
    sent = Arrives(characters);
    for (std::string asked; asked = Arrives(1), !asked.empty(); Asked += asked) {
      const std::string answer = Asked.empty() ? "" : Asked.size() == 1 ? "x" : "\x1A";
      EXPECT_EQ(write(Partner, answer.data(), answer.size()), std::ssize(answer));
    }
  });
  {
    SerialLine line(Calls, ptsname(Partner), Receiver, {}, {});
    ASSERT_EQ(line.OpenCom(1), 1) << line.WhyNot();
    line.IRSend(std::string(3, '\xFF'), 20'000, 1);
    EXPECT_TRUE(line.Sent());
    EXPECT_EQ(QueryZone(line), 3);
    EXPECT_TRUE(SendZone(line, 3));
  }
  partner.join();
  EXPECT_EQ(sent, std::string(characters, '\x5B'));
  EXPECT_EQ(Asked.substr(0, 3), "PPP");
  EXPECT_EQ(Asked.back(), 'Z');
}

}  // namespace
}  // namespace keplo
