#include "line/serial/serial_line.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <thread>

#include "doubles/temp_folder.h"
#include "doubles/until.h"
#include "program/stop_signals.h"
#include "signal/zone_link.h"
#include "simulated_port.h"

namespace keplo::tests {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr std::int32_t kDelay = 10;  // samples of 55 us

struct SerialLineTest : ::testing::Test {
  SimulatedPort Port;
  std::int16_t Receiver = 0;
  std::vector<std::string> Told;
  SerialLine Line{
      Port, kSimulatedDevice, Receiver, {}, [this](const std::string& text) { Told.push_back(text); }};

  bool AtRest() { return Line.DCD() == (Receiver == 0 ? 1 : 0); }
  std::string Capture() {
    std::string capture(kMonitorCaptureBytes, '\0');
    Line.IRMonitor(capture, kDelay);
    return capture;
  }
};

TEST_F(SerialLineTest, FillsWhatItMissedSoThatNothingIsStretched) {
  ASSERT_EQ(Line.OpenCom(1), 1);
  Port.LateEvery = 20;
  Port.Late = milliseconds(3);
  Port.Play({50'000, 20'000, 10'000});
  const std::string samples = SamplesToBits(Capture());
  const auto end = static_cast<double>(samples.find_last_of('1') + 1) * 55;
  EXPECT_NEAR(end, 80'000, 3'000 + 55);
  std::string used(kMonitorCaptureBytes, '\xAA');
  Port.Play({50'000, 20'000, 10'000});
  Line.IRMonitor(used, kDelay);
  EXPECT_NEAR(static_cast<double>(used.find('\xAA')), 216e3 / 55 / 8, 8)
      << "the silence is heard, the rest is left";
}

TEST_F(SerialLineTest, TellsOnceThatItsDeviceWentWhateverItDidAndOpensItAgain) {
  const std::string slots(60, '\x0F');
  const std::vector<std::function<void()>> uses = {
      [&] { Port.SleepUntil(Port.GoneAt); }, [&] { Capture(); }, [&] { Line.IRSend(slots, 560, 0); },
      [&] { Line.IRSend(slots, 560, 1); }, [&] { EXPECT_EQ(QueryZone(Line), kNoZone); }};
  for (std::size_t use = 0; use < uses.size(); ++use) {
    ASSERT_EQ(Line.OpenCom(1), 1);
    Line.SetMode(2);
    Told.clear();
    EXPECT_TRUE(AtRest());
    Port.Play(PulseTrain(300, 560));
    Port.GoneAt = Port.Now() + milliseconds(50);
    uses[use]();
    for (int look = 0; look < 3; ++look) EXPECT_TRUE(AtRest());
    EXPECT_EQ(Told, std::vector{Line.WhyNot()}) << "use " << use;
    EXPECT_FALSE(Line.Sent());
    EXPECT_GT(Line.MayRest(), milliseconds(100)) << "a port that is gone is not asked all the time";
    Port.SleepUntil(Port.Now() + std::chrono::seconds(5));
    Port.Rts = false;
    Port.Break = true;
    Port.GoneAt = std::chrono::nanoseconds::max();
    EXPECT_TRUE(AtRest());
    EXPECT_TRUE(Port.Rts && !Port.Break) << "as after opening";
    EXPECT_EQ(cfgetospeed(&Port.Settings), use == 4 ? B115200 : B9600);
    EXPECT_EQ(Told.back(), kSimulatedDevice + " is back.");
    EXPECT_EQ(Line.WhyNot(), "");
  }
}

TEST_F(SerialLineTest, PutsSlotsOutOnTime) {
  ASSERT_EQ(Line.OpenCom(1), 1);
  Port.Dtr.clear();
  const std::string bytes = "\xF0\x0F\x81";
  const auto opened = Port.Now();
  Line.IRSend(bytes, 560, 0);
  EXPECT_NEAR(static_cast<double>((Port.Dtr.at(0).first - opened).count()), 21e6, 0.1e6) << "no flash in it";
  const std::vector<int> ends = {0, 4, 12, 17, 23, 24};  // slots at which light begins and ends
  ASSERT_GE(Port.Dtr.size(), ends.size());
  for (std::size_t i = 0; i < ends.size(); ++i) {
    EXPECT_EQ(Port.Dtr[i].second, i % 2 == 0);
    const auto slot = microseconds(560 * ends[i]);
    EXPECT_NEAR(static_cast<double>((Port.Dtr[i].first - Port.Dtr[0].first - slot).count()), 0, 60'000) << i;
  }
  EXPECT_FALSE(Port.Dtr.back().second);

  Line.SetCarrier(38'400);
  EXPECT_TRUE(Told.empty()) << "near enough for every receiver";
  Line.SetCarrier(56'000);
  Line.SetCarrier(36'000);
  EXPECT_EQ(Told.size(), 1U) << "a carrier that the line cannot have is told once";
  Port.Interrupts = 2;
  Line.IRSend(bytes, 560, 1);
  ASSERT_EQ(Port.Written.size(), 3U) << "a mark is one write, so that it has no gap";
  EXPECT_EQ(Port.Written[0].second, std::string(29, '\x5B')) << "2,240 us of characters of 78.1 us";
  EXPECT_NEAR(static_cast<double>((Port.Written[1].first - Port.Written[0].first).count()), 12 * 560e3, 60e3);
}

TEST(SerialLine, LeavesAWaitForASignalToWhoeverEndsTheProgram) {
  struct : SimulatedPort {
    int Comes = 0;
    void SleepUntil(std::chrono::nanoseconds time) override {
      SimulatedPort::SleepUntil(time);
      if (const int number = std::exchange(Comes, 0); number != 0) raise(number);
    }
  } port;
  const std::int16_t receiver = 0;
  SerialLine line(port, kSimulatedDevice, receiver, {}, {});
  ASSERT_EQ(line.OpenCom(1), 1);
  struct Case {
    int Number;
    std::vector<int> Asking;
    bool Ends;
  };
  for (const Case& c : {Case{SIGTERM, {}, true}, Case{SIGHUP, {}, true}, Case{SIGHUP, {SIGHUP}, false}}) {
    const StopSignals signals(c.Asking.empty() ? std::vector{c.Number} : std::vector<int>(), c.Asking);
    const std::chrono::nanoseconds begin = port.Now();
    port.Comes = c.Number;
    std::string buffer(1'000, '\0');
    EXPECT_EQ(line.IRRecord(buffer, kDelay, 1'000), 0);
    EXPECT_EQ(port.Now() - begin < std::chrono::seconds(1), c.Ends) << c.Number;
    EXPECT_EQ(signals.Take(), c.Number);
  }
}

TEST_F(SerialLineTest, TakesNoLateAnswerForTheNextOne) {
  ASSERT_EQ(Line.OpenCom(1), 1);
  struct Case {
    std::deque<std::pair<milliseconds, char>> Answers;
    std::int16_t Zone;
  };
  for (const Case& c : {Case{{{milliseconds(2), '\x1A'}}, 3}, Case{{{milliseconds(150), '5'}}, 5},
                        Case{{{milliseconds(210), '\x1A'}, {milliseconds(20), '5'}}, 5},
                        Case{{{milliseconds(2), 'x'}, {milliseconds(2), '\x1A'}}, 3}, Case{{}, kNoZone}}) {
    Port.Answers = c.Answers;
    EXPECT_EQ(QueryZone(Line), c.Zone) << c.Answers.size();
  }
}

TEST(SerialLine, IsDarkWhileItsProgramIsStopped) {
  void* const shared = mmap(nullptr, sizeof(bool), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  struct : SimulatedPort {
    bool* Lit = nullptr;
    bool Stops = true;
    void SleepUntil(std::chrono::nanoseconds time) override {
      SimulatedPort::SleepUntil(time);
      *Lit = !Dtr.empty() && Dtr.back().second;
      if (!*Lit || !std::exchange(Stops, false)) return;
      kill(getpid(), SIGTSTP);  // the system gives it to a thread that does not hold it back
      Until([] {                // which passes it on to this one
        std::ifstream status("/proc/thread-self/status");
        const std::string text(std::istreambuf_iterator<char>(status), {});
        return text.find("SigPnd:\t0000000000000000") == text.npos;
      });
    }
  } port;
  port.Lit = static_cast<bool*>(shared);
  const pid_t child = fork();
  if (child == 0) {
    setpgid(0, 0);  // else there is nobody who could let it go on, and it is not stopped
    std::thread([] { pause(); }).detach();
    const std::int16_t receiver = 0;
    SerialLine line(port, kSimulatedDevice, receiver, {}, {});
    line.OpenCom(1);
    line.IRSend("\xF0\xF0", 560, 0);
    const bool sent = line.Sent();
    line.CloseCom();  // else its lock file stays
    _exit(sent ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, WUNTRACED), child);
  EXPECT_TRUE(WIFSTOPPED(status) && !*port.Lit) << status;
  kill(child, SIGCONT);
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0) << "it went on";
  munmap(shared, sizeof(bool));
}

TEST(SerialLine, LeavesNoLightOnAPortThatAnotherProgramHas) {
  struct : SimulatedPort {
    const TempFolder Folder;
    int Open(const std::string& /*path*/, int /*flags*/) override {
      return open((Folder.Path() / "port").c_str(), O_RDWR | O_CREAT, 0600);
    }
    void Close(int descriptor) override { close(descriptor); }
  } port;
  const DeviceDescriptor other(port, port.Open({}, 0));
  ASSERT_EQ(flock(other.Get(), LOCK_EX), 0);
  const std::int16_t receiver = 0;
  SerialLine line(port, kSimulatedDevice, receiver, {}, {});
  EXPECT_EQ(line.OpenCom(1), 0);
  EXPECT_TRUE(line.IsInUse() && port.Dtr.size() == 1 && !port.Dtr[0].second) << "an open raises it";
}

TEST_F(SerialLineTest, LeavesAPortAsItFoundIt) {
  Port.Settings.c_cflag = B1200 | CS7;
  ASSERT_EQ(Line.OpenCom(1), 1);
  EXPECT_TRUE(Port.Exclusive && Port.Settings.c_cflag == (B115200 | CS7 | CLOCAL | CREAD | HUPCL));
  Line.DTR(-1);
  Line.TXD(-1);
  Line.RTS(0);
  EXPECT_TRUE(Port.Dtr.back().second && Port.Break && !Port.Rts);
  Line.CloseCom();
  EXPECT_TRUE(!Port.Exclusive && Port.Settings.c_cflag == (B1200 | CS7));
  EXPECT_TRUE(!Port.Dtr.back().second && !Port.Break);
}

TEST_F(SerialLineTest, DoesNothingOnAPortThatIsNotOpen) {
  Port.There = false;
  EXPECT_EQ(Line.OpenCom(1), 0);
  EXPECT_EQ(Line.WhyNot(), kSimulatedDevice + " is not there. Plug it in, or load its driver.");
  Line.DTR(-1);
  Line.IRSend("\xFF", 560, 0);
  Line.SendChr('P');
  char answer = 'a';
  EXPECT_EQ(Line.ReadChr(answer), 0);
  EXPECT_TRUE(AtRest());
  EXPECT_EQ(Capture(), std::string(kMonitorCaptureBytes, '\0'));
  EXPECT_TRUE(Port.Dtr.empty() && Port.Written.empty() && Told.empty());
}

}  // namespace
}  // namespace keplo::tests
