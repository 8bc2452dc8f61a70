#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <stdlib.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <fstream>
#include <thread>

#include "doubles/temp_folder.h"
#include "doubles/until.h"
#include "line/device_access.h"
#include "line/port_check.h"
#include "line/port_line.h"
#include "line/real_time.h"
#include "line/serial/lock_file.h"
#include "line/serial/serial_line.h"
#include "signal/zone_link.h"

namespace keplo {
namespace {

TEST(TerminalLine, SendsMoreThanAPortTakesAtOnceAndAsksZonesBesideIt) {
  struct : KernelCalls {
    int Poll(pollfd* descriptors, nfds_t count, int timeout) override {
      return KernelCalls::Poll(descriptors, count, timeout > 0 ? 60'000 : 0);  // the partner may be slow
    }
  } calls;  // a terminal has all of a port but its modem lines
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

TEST(DeviceAccess, TellsAnotherProgramThatHasADevice) {
  const tests::TempFolder folder;
  const std::string name = "ttyTold" + std::to_string(getpid());
  const std::string device = folder.Write(name, "").string(), lockFile = "/var/lock/LCK.." + name;
  KernelCalls calls;
  const DeviceDescriptor own(calls, calls.Open(device, O_RDONLY | O_CLOEXEC));
  EXPECT_EQ(HolderOfDevice(device), "") << "nobody but this one";
  EXPECT_EQ(HolderOfLock(device), "");
  const pid_t child = fork();
  if (child == 0 && flock(open(device.c_str(), O_RDONLY | O_CLOEXEC), LOCK_EX) != 0) _exit(1);
  while (child == 0) pause();
  ASSERT_GT(child, 0);
  EXPECT_TRUE(tests::Until([&] { return HolderOfLock(device) == NameOfProcess(child); }));
  EXPECT_EQ(HolderOfDevice(device), NameOfProcess(child));
  const bool locks = static_cast<bool>(std::ofstream(lockFile) << child << std::flush);
  EXPECT_EQ(HolderOfLockFile(device), locks ? NameOfProcess(child) : "");
  EXPECT_EQ(TakeLockFile(device), "") << "it runs";
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  EXPECT_EQ(HolderOfLockFile(device), "");
  EXPECT_EQ(TakeLockFile(device), locks ? lockFile : "");
  ReleaseLockFile(lockFile);
}

TEST(KernelCalls, InterruptWhatAnotherThreadWaitsFor) {
  KernelCalls calls;
  std::atomic<int> error = 0;
  std::thread waiting([&] { error = calls.Poll(nullptr, 0, 600'000) < 0 ? errno : ETIMEDOUT; });
  while (error == 0) {  // a wait may begin just after the signal
    calls.Interrupt(waiting.native_handle());
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  waiting.join();
  EXPECT_EQ(error, EINTR);
}

TEST(Hurry, IsOverWithItsEnd) {
  const auto now = [] {
    int policy = 0;
    sched_param parameters{};
    pthread_getschedparam(pthread_self(), &policy, &parameters);
    return std::array{policy, parameters.sched_priority, prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0)};
  };
  const auto before = now();
  {
    const Hurry hurry;
    EXPECT_TRUE(now()[0] != SCHED_FIFO || now()[1] == 10);
    EXPECT_LE(now()[2], 1);
  }
  EXPECT_EQ(now(), before);
}

TEST(PortLine, OpensAnAdapterOnUsbNotBeforeItIsUsed) {
  KernelCalls kernel;
  const DeviceDescriptor partner(kernel, posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_TRUE(grantpt(partner.Get()) == 0 && unlockpt(partner.Get()) == 0);
  const tests::TempFolder folder;
  const auto tty = folder.Path() / "tty" / KernelName(ptsname(partner.Get()));
  for (const auto& made : {tty, folder.Path() / "usb1/1-1"}) std::filesystem::create_directories(made);
  std::filesystem::create_directory_symlink(folder.Path() / "usb1/1-1", tty / "device");
  std::filesystem::create_directory_symlink("drivers/ftdi_sio", folder.Path() / "usb1/driver");
  const DeviceFolders folders = {folder.Path(), "/dev/pts"};
  const PortMap map = FindPorts(folders);
  int opened = 0;
  struct CountedCalls : KernelCalls {
    explicit CountedCalls(int& opened) : opened_(opened) {}
    int Open(const std::string& path, int flags) override {
      return ++opened_, KernelCalls::Open(path, flags);
    }
    int& opened_;
  };
  CountedCalls calls(opened);
  const PortCheck check = CheckPort(calls, map.Ports.at(0), folders);
  EXPECT_TRUE(check.Opens && !check.Receives && !check.Sends) << check.Why;
  EXPECT_EQ(check.Driver, "ftdi_sio") << "of the first device above that has one";
  EXPECT_NE(check.Why.find("USB adapter"), std::string::npos) << check.Why;
  EXPECT_NE(SerialPort::Foresee("/nowhere/ttyS0").Why.find("is not there"), std::string::npos);

  const std::int16_t receiver = 0;
  std::int32_t ofSettings = 2;
  PortLine line(std::make_unique<CountedCalls>(opened), [&] { return map; }, receiver, {}, {});
  line.FollowSettings(&ofSettings, {});
  EXPECT_EQ(line.OpenCom(1), 1) << line.WhyNot();
  EXPECT_EQ(opened, 0) << "an open would pulse the lines of what hangs there";
  for (const int times : {1, 2}) {
    line.TXD(0);
    EXPECT_EQ(opened, times);
    ofSettings = 1;
    EXPECT_EQ(line.OpenCom(1), 1) << line.WhyNot();
  }
}

}  // namespace
}  // namespace keplo
