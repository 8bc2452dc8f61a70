#include "line/lirc/lirc_line.h"

#include <gtest/gtest.h>
#include <linux/lirc.h>
#include <unistd.h>

#include <deque>
#include <numeric>

#include "line/port_check.h"
#include "line/slot_clock.h"
#include "press_builder.h"

namespace keplo {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

using Items = std::deque<std::pair<nanoseconds, std::uint32_t>>;  // when they are over

/// An infrared device on a clock that moves only when somebody waits.
struct SimulatedDevice : DeviceCalls {
  std::uint32_t Features = LIRC_CAN_REC_MODE2 | LIRC_CAN_SEND_PULSE;
  bool There = true;
  int WriteError = 0;
  std::size_t MostItems = 1023;
  Items Coming;
  std::vector<std::pair<nanoseconds, std::vector<unsigned>>> Sent;
  nanoseconds Time{std::chrono::hours(1)};

  void Add(nanoseconds at, std::uint32_t kind, std::uint32_t value) { Coming.emplace_back(at, kind | value); }
  /// The items of a press that begins now, and the time-out of the device behind it.
  /// @param whole whether a space is told with what its time-out has told of it, as by older kernels
  /// @return when the last mark is over
  nanoseconds Play(const PulseTrain& press, std::uint32_t timeout = 125'000, bool whole = false) {
    nanoseconds at = Time;
    for (std::size_t i = 0; i < press.size(); ++i) {
      auto length = static_cast<std::uint32_t>(press[i]);
      at += microseconds(length);
      if (i % 2 == 1 && length > timeout) {
        Add(at + microseconds(timeout) - microseconds(length), LIRC_MODE2_TIMEOUT, timeout);
        if (!whole) length -= timeout;
      }
      Add(at, i % 2 == 0 ? LIRC_MODE2_PULSE : LIRC_MODE2_SPACE, length);
    }
    Add(at + microseconds(timeout), LIRC_MODE2_TIMEOUT, timeout);
    return at;
  }

  int Open(const std::string& /*path*/, int /*flags*/) override {
    return There ? 1'000'000 : (errno = ENOENT, -1);
  }
  void Close(int /*descriptor*/) override {}
  int Ioctl(int /*descriptor*/, unsigned long request, void* argument) override {
    if (request == LIRC_GET_FEATURES) *static_cast<std::uint32_t*>(argument) = Features;
    return There ? 0 : (errno = ENODEV, -1);
  }
  ssize_t Read(int /*descriptor*/, void* data, std::size_t size) override {
    if (!There) return errno = ENODEV, -1;
    std::size_t count = 0;
    for (; !Coming.empty() && Coming.front().first <= Time && count < size / 4; ++count) {
      static_cast<std::uint32_t*>(data)[count] = Coming.front().second;
      Coming.pop_front();
    }
    return count > 0 ? static_cast<ssize_t>(count * 4) : (errno = EAGAIN, -1);
  }
  ssize_t Write(int /*descriptor*/, const void* /*data*/, std::size_t size) override {
    return static_cast<ssize_t>(size);
  }
  ssize_t WriteUntil(int /*descriptor*/, const void* data, std::size_t size, nanoseconds until) override {
    if (WriteError != 0 || size / 4 > MostItems) return errno = WriteError != 0 ? WriteError : ENOSPC, -1;
    const auto* const begin = static_cast<const unsigned*>(data);
    Sent.emplace_back(Time, std::vector<unsigned>(begin, begin + size / 4));
    const microseconds length(std::accumulate(begin, begin + size / 4, 0U));
    Time = std::max(Time, std::min<nanoseconds>(Time + length + milliseconds(32),
                                                until));  // late as by the kernel's timers
    return static_cast<ssize_t>(size);
  }
  int Poll(pollfd* waits, nfds_t /*count*/, int timeout) override {
    const nanoseconds until = Time + milliseconds(timeout);
    waits->revents = There ? 0 : POLLHUP | POLLERR;
    if (!There) return 1;
    const bool comes = !Coming.empty() && Coming.front().first <= until;
    Time = comes ? std::max(Time, Coming.front().first) : until;
    return comes ? 1 : 0;
  }
  nanoseconds Now() override { return Time; }
  void SleepUntil(nanoseconds time) override { Time = std::max(Time, time); }
  void Interrupt(pthread_t /*thread*/) override {}
};

struct LircLineTest : ::testing::Test {
  SimulatedDevice Device;
  std::int16_t Receiver = 0;
  std::vector<std::string> Told;
  LircLine Line{
      Device, "/dev/lirc0", Receiver, {}, [this](const std::string& text) { Told.push_back(text); }};

  void SetUp() override { ASSERT_EQ(Line.OpenCom(1), 1); }
  /// Ticks until a capture, as a monitor does.
  std::string Heard() {
    for (int tick = 0; Line.DCD() == 1; ++tick) {
      if (tick == 2000) return "nothing";
      Device.Time += milliseconds(2);
    }
    std::string capture(kMonitorCaptureBytes, '\0');
    Line.IRMonitor(capture, 10);
    SignalState state;
    const MonitorReading reading = ReadCapture(capture, state, Analysis::Second);
    return reading.Ended == Stage::Code ? reading.Digits : std::string(StageName(reading.Ended));
  }
};

TEST_F(LircLineTest, HearsPressesWhateverTheDeviceTellsAmongTheirLengths) {
  for (const std::uint32_t timeout : {16'000U, 125'000U, 500'000U}) {
    for (const auto& [kind, bits] : {std::pair(kNec, tests::kNecBits), {kSony, tests::kSonyBits}}) {
      Device.Play(tests::Clean(kind, bits), timeout);
      Device.Coming.insert(Device.Coming.begin() + 4,
                           {Device.Coming[3].first, LIRC_MODE2_FREQUENCY | 38'000U});
      EXPECT_EQ(Heard(), bits) << "time-out " << timeout;
      Device.Time += milliseconds(700);
    }
  }
}

TEST_F(LircLineTest, EndsAPressByTheSilenceBehindItsLastMark) {
  const nanoseconds end = Device.Play({9000, 4500, 560, 560, 560});
  Heard();
  EXPECT_LE(Device.Time - end, milliseconds(140));
}

TEST_F(LircLineTest, KnowsWhenASignalWasOnAirHoweverLateItIsTaken) {
  PulseTrain press = tests::Clean(kRc5, tests::kRc5Bits);
  press.pop_back();  // the silence after it
  for (const std::uint32_t timeout : {16'000U, 50'000U, 125'000U}) {
    for (const bool whole : {false, true}) {
      const auto begin = std::chrono::duration_cast<microseconds>(Device.Time);
      Device.Play(press, timeout, whole);
      EXPECT_EQ(Heard(), tests::kRc5Bits) << timeout;
      EXPECT_NEAR(static_cast<double>((Line.Origin()->Begin - begin).count()), 0, 2000);
      const nanoseconds paused = Device.Time += milliseconds(200);
      Heard();
      EXPECT_EQ(Device.Time, paused) << "the third frame was over long ago";
      EXPECT_NEAR(static_cast<double>((Line.Origin()->Begin - begin).count()), 2 * 113'792, 2000)
          << timeout << whole;
      Device.Time += milliseconds(700);  // which the device does not tell
    }
  }
}

TEST_F(LircLineTest, DropsWhatAnOverflowHasTornUntilTheNextPress) {
  const nanoseconds end = Device.Play(tests::Clean(kNec, tests::kNecBits));
  Device.Coming[20].second = LIRC_MODE2_OVERFLOW;
  EXPECT_EQ(Heard(), StageName(Stage::Empty)) << "no part of it";
  EXPECT_TRUE(Line.Losses().Overflows == 1 && Told.size() == 1) << "nor is it lost in silence";
  Device.Time = end + milliseconds(400);
  Line.Forget();
  Device.Add(Device.Time, LIRC_MODE2_SPACE, 400'000);
  Device.Play(tests::Clean(kSony, tests::kSonyBits));
  EXPECT_EQ(Heard(), tests::kSonyBits);
}

TEST_F(LircLineTest, HearsTheFrameBehindTheSpaceInWhichTheBufferEnded) {
  PulseTrain held(358, 560);
  held.back() = 60'000;  // in which the buffer of 224 ms ends
  const PulseTrain next = tests::Clean(kSony, tests::kSonyBits);
  held.insert(held.end(), next.begin(), next.end());
  Device.Play(held);
  Heard();
  EXPECT_EQ(Heard(), tests::kSonyBits);
}

TEST_F(LircLineTest, SendsLongSignalsInPartsThatBeginOnTime) {
  struct Case {
    const char* Name;
    std::string Bytes;
    std::int32_t Pulse;
    std::size_t MostItems = 1023;
  };
  const std::string frame(30, '\xAA');
  const std::string half = std::string(15, '\xAA') + std::string(2, '\0');
  for (const Case& c :
       {Case{"short", frame, 560}, Case{"gaps", frame + std::string(5, '\0') + frame, 1000},
        Case{"short gaps", half + half + half + half, 1000}, Case{"many marks", std::string(300, '\xAA'), 50},
        Case{"small device", frame, 560, 63}}) {
    Device.Sent.clear();
    Device.MostItems = c.MostItems;
    Line.IRSend(c.Bytes, c.Pulse, 0);
    std::vector<nanoseconds> ideal;
    for (const LitSlots& lit : LitSlotsOf(c.Bytes)) {
      ideal.push_back(static_cast<std::int64_t>(lit.Begin) * microseconds(c.Pulse));
    }
    std::size_t mark = 0;
    for (const auto& [start, lengths] : Device.Sent) {
      EXPECT_EQ(lengths.size() % 2, 1U) << c.Name;
      EXPECT_LE(lengths.size(), c.MostItems) << c.Name;
      nanoseconds at = start - Device.Sent[0].first;
      for (std::size_t i = 0; i < lengths.size(); at += microseconds(lengths[i++])) {
        if (i % 2 == 1) continue;
        EXPECT_EQ(at, ideal[mark++]) << c.Name;
      }
      EXPECT_LT(at - (start - Device.Sent[0].first), milliseconds(500)) << c.Name;
    }
    EXPECT_EQ(mark, ideal.size()) << c.Name;
    EXPECT_TRUE(Line.Sent());
  }
}

TEST_F(LircLineTest, TellsWhatItsDeviceDoesNotDo) {
  struct Case {
    const char* Name;
    std::uint32_t Features;
    int WriteError;
    const char* Says;
    bool Gone;
  };
  const std::uint32_t both = LIRC_CAN_REC_MODE2 | LIRC_CAN_SEND_PULSE;
  for (const Case& c :
       {Case{"receives only", LIRC_CAN_REC_MODE2, 0, "receives only", false},
        Case{"refuses", both, EINVAL, "does not take a signal of these lengths", false},
        Case{"busy", both, EBUSY, "sending for another program", false},
        Case{"fails", both, EIO, "did not send: ", false}, Case{"gone", both, ENODEV, "is gone", true}}) {
    Device.Features = c.Features;
    Device.WriteError = c.WriteError;
    Told.clear();
    LircLine line(Device, "/dev/lirc0", Receiver, {},
                  [this](const std::string& text) { Told.push_back(text); });
    ASSERT_EQ(line.OpenCom(1), 1);
    line.IRSend("\xF0", 560, 0);
    ASSERT_EQ(Told.size(), 1U) << c.Name;
    EXPECT_NE(Told[0].find(c.Says), std::string::npos) << Told[0];
    EXPECT_EQ(line.WhyNot().empty(), !c.Gone) << c.Name;
    EXPECT_FALSE(line.Sent());
  }
}

TEST_F(LircLineTest, IsCheckedByWhatItsDeviceDoes) {
  for (const bool there : {true, false}) {
    Device.There = there;
    const MappedPort port = {1, MappedPort::Kind::Lirc, "/dev/lirc0", {}, {}};
    const PortCheck check = CheckPort(Device, port, {"/nowhere", "/nowhere"});
    EXPECT_EQ(check.Opens && check.Receives && check.Sends, there) << check.Why;
    EXPECT_EQ(check.Why.find("is not there") != std::string::npos, !there) << check.Why;
  }
}

TEST_F(LircLineTest, GivesUpWhatItHeardWhenItsDeviceGoes) {
  for (const std::uint32_t features : {LIRC_CAN_REC_MODE2, LIRC_CAN_SEND_PULSE}) {
    Device.There = true;
    Device.Features = features;
    ASSERT_EQ(Line.OpenCom(1), 1);
    Told.clear();
    Device.There = false;
    std::string capture(100, '\0');
    EXPECT_EQ(Line.IRRecord(capture, 10, 100), 0);
    Device.Time += std::chrono::seconds(5);
    Line.DCD();
    EXPECT_GT(Line.MayRest(), milliseconds(100)) << "no busy loop";
    Device.There = true;
    Device.Time += std::chrono::seconds(5);
    Line.LookAfterDevice();
    ASSERT_EQ(Told.size(), 2U);
    EXPECT_EQ(Told[1], "/dev/lirc0 is back.");
  }
}

}  // namespace
}  // namespace keplo
