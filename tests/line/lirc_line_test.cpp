#include "line/lirc/lirc_line.h"

#include <gtest/gtest.h>
#include <linux/lirc.h>
#include <unistd.h>

#include <deque>
#include <map>
#include <numeric>

#include "line/port_check.h"
#include "line/slot_clock.h"
#include "line_script.h"
#include "signal/analysis_choice.h"

namespace keplo {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

using Items = std::deque<std::pair<nanoseconds, std::uint32_t>>;  // when they are over

/// An infrared device on a clock that moves only when somebody waits.
struct SimulatedDevice : DeviceCalls {
  std::uint32_t Features = LIRC_CAN_REC_MODE2 | LIRC_CAN_SEND_PULSE;
  nanoseconds GoneAt = nanoseconds::max();
  int OpenError = 0, WriteError = 0;
  std::size_t MostItems = 1023;
  Items Coming;
  std::map<unsigned long, std::uint32_t> Set;  // by what was last asked of it
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

  bool IsThere() const { return Time < GoneAt; }
  int Open(const std::string& /*path*/, int /*flags*/) override {
    errno = IsThere() ? OpenError : ENOENT;
    return errno == 0 ? 1'000'000 : -1;
  }
  void Close(int /*descriptor*/) override {}
  int Ioctl(int /*descriptor*/, unsigned long request, void* argument) override {
    if (request == LIRC_GET_FEATURES) *static_cast<std::uint32_t*>(argument) = Features;
    if (request != LIRC_GET_FEATURES) Set[request] = *static_cast<std::uint32_t*>(argument);
    return IsThere() ? 0 : (errno = ENODEV, -1);
  }
  ssize_t Read(int /*descriptor*/, void* data, std::size_t size) override {
    if (!IsThere()) return errno = ENODEV, -1;
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
    if (until >= GoneAt) {
      Time = std::max(Time, std::min(GoneAt, until));
      waits->revents = POLLHUP | POLLERR;
      return 1;
    }
    waits->revents = 0;
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
};

/// What a line makes of a script. In a play stand o for an overflow and c for a carrier in place of lengths,
/// and ahead of it, with a colon, may stand the time-out of the device in milliseconds, and w if it is told
/// whole.
std::string Heard(const std::string& script, Analysis reader) {
  SimulatedDevice device;
  const std::int16_t receiver = 0;
  LineOptions options;
  options.ReadBy = &reader;
  std::string told;
  LircLine line(device, "/dev/lirc0", receiver, options,
                [&](const std::string& text) { told += text + ";"; });
  EXPECT_EQ(line.OpenCom(1), 1);
  device.Time += milliseconds(1000);
  const std::string text = tests::Script(device, line, script, [&](const std::string& lengths) {
    const std::size_t colon = lengths.find(':');
    const std::uint32_t timeout =
        colon == std::string::npos ? 125'000 : static_cast<std::uint32_t>(1000 * std::stoi(lengths));
    const tests::Played played = tests::ReadPlayed(lengths.substr(colon + 1));
    const std::size_t first = device.Coming.size();
    device.Play(played.Lengths, timeout, colon != std::string::npos && lengths[colon - 1] == 'w');
    for (std::size_t i = played.Marks.size(); i-- > 0;) {
      if (played.Marks[i] == ' ') continue;
      const auto at = device.Coming.begin() + static_cast<std::ptrdiff_t>(first + i);
      const std::uint32_t item = played.Marks[i] == 'o' ? LIRC_MODE2_OVERFLOW : LIRC_MODE2_FREQUENCY | 38'000;
      device.Coming.insert(at, {at[-1].first, item});
    }
  });
  return text + told;
}

const std::string kLost =
    "/dev/lirc0 could not keep all that it heard, as on a busy machine: a press was lost. keplo ports tells "
    "how to give captures priority.;";
const std::string kGone = "/dev/lirc0 is gone. Plug it in again; it is opened by itself.;";

TEST(LircLine, HearsWhatItsDeviceTells) {
  struct Row {
    const char *Name, *Script;
    std::string Text;
    Analysis ReadBy = Analysis::Second;
  };
  const Row rows[] = {
      {"a press", "p900,500,700 d w1000 q d m400 d l q w1000000 q",
       "1 rest 1000 0 [900 500 700] 16 9 13 2466/313 100..2200 @138100; 1 0 0 0 0 0 rest 0 rest 1000 "},
      {"shaped", "p2500,500,1300,500,700,480,1320,500,680,520,720,500,1280 w10000 d m50",
       "0 [2500 500 1300 500 700 480 1320 500 680 520 720 500 1280] 44 11 21 11 11 11 22 11 11 11 11 11 22 "
       "192/50 7500..19000 @147500; ",
       Analysis::First},
      {"a short time-out", "p16:900,500,700,30000,600,400,600 w1000 d m400 w200000 d",
       "0 [900 500 700 30000 600 400 600] 16 9 13 546 11 7 11 2467/385 100..33800 @169700; 1 "},
      {"a short one, whole", "p16w:900,500,700,30000,600,400,600 w1000 d m400",
       "0 [900 500 700 30000 600 400 600] 16 9 13 546 11 7 11 2467/385 100..33800 @169700; "},
      {"a long one", "p500:900,500,700,30000,600,400,600 w1000 d m400",
       "0 [900 500 700 30000 600 400 600] 16 9 13 546 11 7 11 2467/385 100..33800 @169700; "},
      {"a late look", "p900,500,700,160000,600,30000,600 w1000 d m400 w400000 d m400",
       "0 [900 500 700] 16 9 13 2466/313 100..2200 @138100; 0 [600 30000 600] 11 545 11 2473/380 "
       "162100..193300 @538100; "},
      {"late, a short time-out", "p16:900,500,700,160000,600,30000,600 w1000 d m400 w400000 d m400",
       "0 [900 500 700] 16 9 13 2466/313 100..2200 @138100; 0 [600 30000 600] 11 545 11 2473/380 "
       "162100..193300 @538100; "},
      {"a space not told", "p16:900,500,700 w1000 d m400 w700000 p16:900,600 w2000 d m400",
       "0 [900 500 700] 16 9 13 2466/313 100..2200 @138100; 0 [900 600] 16 8/3 839200..840100 @975600; "},
      {"a space of one press", "p900,500,700,149999,600,400,600 w400000 d m510",
       "0 [900 500 700 149999 600 400 600] 16 9 13 2727 11 8 11 1285/510 399100..552799 @411000; "},
      {"a space of two", "p900,500,700,150000,600,400,600 w400000 d m510 d m510",
       "0 [900 500 700] 16 9 13 2466/313 399100..401200 @400000; 0 [600 400 600] 11 7 11 2467/312 "
       "551200..552800 @411000; "},
      {"a carrier within", "p900,500,c700 w5000 d m400",
       "0 [900 500 700] 16 9 13 2466/313 4100..6200 @138100; "},
      {"nothing between two spaces", "p900,500,0,200,700 w5000 d m400",
       "0 [900 500 0 200 700] 16 13 13 2470/314 4100..6400 @138300; "},
      {"an overflow", "p900,500,700,o500,600,400,600,7000,800,400,900 w5000 d m400 w5000 d m400 l",
       "1 [] /0 @5000; 1 [] /0 @10000; 0 0 0 0 1 " + kLost},
      {"an overflow within a capture",
       "p900,5000,700,500,o600,5999,800,6000,900 w1000 d m400 d w14500 d m400 l",
       "0 [] /0 @7100; 1 0 [900] 16 2472/311 20499..21399 @157399; 0 0 0 0 1 " + kLost},
      {"our own overflow", "p900,500,700,o600,400,600,7000,800 s560 d m400 l",
       "sent 1 [] /0 @6480; 0 0 0 0 0 "},
      {"full in a frame", "p900,500,700,3000,600,3000,600,5999,700,6000,800 w40000 d m8 d m400 d",
       "0 [900 500 700 3000] 16 9 13 26/8 39100..41200 @40000; 0 [800] 15 2465/310 61099..61899 @158799; 1 "},
      {"full in a gap", "p900,500,700,6000,600,400,700 w60000 d m13 d m400 d",
       "0 [900 500 700 6000] 16 9 13 66/13 59100..61200 @60000; 0 [600 400 700] 11 7 13 2465/312 "
       "67200..68900 @145800; 1 "},
      {"full with a mark", "p900,500,7400,5000,600 w60000 d m20 d",
       "0 [900 500 7400] 16 9 135/20 59100..67900 @60000; 1 "},
      {"full in a space", "p900,500,700,3000,600,5999,700 w60000 d m20 d m400",
       "0 [900 500 700 3000 600 5999] 16 9 13 55 11 56/20 59100..64800 @60000; 1 [] /0 @60000; "},
      {"forgotten within a frame", "p900,500,700,5000,600,6000,700 w3000 d f w6000 d w8000 d m400",
       "0 1 0 [700] 13 2467/310 14600..15300 @150400; "},
      {"forgotten in silence", "p900,500,700 w1000 d m400 f p900,500,600 w3000 d m400",
       "0 [900 500 700] 16 9 13 2466/313 100..2200 @138100; 0 [900 500 600] 16 9 11 2468/313 140200..142200 "
       "@276100; "},
      {"a recording", "p900,500,700,30000,600,400,600 w1000 r50 r10",
       "1 [600 400 600] 11 7 11 371/50 32100..33700 @169700; 0 [600 400 600] /0 32100..33700 @10169700; "},
      {"gone and back", "p900,500,700,30000,600,400,600 w1000 d g2000 m400 d q w2000000 g d q",
       "0 [] /0 @3000; 1 rest 2000 0 rest 0 " + kGone + "/dev/lirc0 is back.;"},
      {"gone in a recording", "w1000 g1000 r400", "0 [] /0 @10001000; " + kGone},
      {"its own light", "s560 p900 w29000 d p900 w1001 d s20001 w1000000 q d q",
       "sent 1 1 not sent rest 1000 1 rest 1000 A pulse of 20001 us is not sent. Use 1 to 20000 us.;"}};
  for (const Row& row : rows) EXPECT_EQ(Heard(row.Script, row.ReadBy), row.Text) << row.Name;
}

TEST_F(LircLineTest, SendsLongSignalsInPartsThatBeginOnTime) {
  struct Case {
    const char* Name;
    std::string Bytes;
    std::int32_t Pulse;
    std::size_t Parts;
    std::size_t MostItems = 1023;
  };
  const std::string frame(30, '\xAA');
  const std::string half = std::string(15, '\xAA') + std::string(2, '\0');
  for (const Case& c :
       {Case{"short", frame, 560, 1}, Case{"gaps", frame + std::string(5, '\0') + frame, 1000, 2},
        Case{"short gaps", half + half + half + half, 1000, 2},
        Case{"long marks", std::string(40, '\xFF') + '\0' + std::string(40, '\xFF'), 1000, 2},
        Case{"many marks", std::string(300, '\xAA'), 50, 3}, Case{"small device", frame, 560, 4, 63}}) {
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
    EXPECT_EQ(Device.Sent.size(), c.Parts) << c.Name;
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
  for (const Case& c : {Case{"receives only", LIRC_CAN_REC_MODE2, 0, "receives only", false},
                        Case{"refuses", both, EINVAL, "does not take a signal of these lengths", false},
                        Case{"busy", both, EBUSY, "sending for another program", false},
                        Case{"fails", both, EIO, "did not send: ", false},
                        Case{"busy on and on", both, EAGAIN, "did not send: ", false},
                        Case{"gone", both, ENODEV, "is gone", true}}) {
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

TEST_F(LircLineTest, TellsWhyItsDeviceDoesNotOpen) {
  for (const auto& [error, why, isInUse] :
       {std::tuple(EBUSY,
                   "/dev/lirc0 is in use by another program. End that program, or choose another port.",
                   true),
        {ENOENT, "/dev/lirc0 is not there. Plug it in, or load its driver.", false}}) {
    Device.OpenError = error;
    EXPECT_EQ(Line.OpenCom(1), 0);
    EXPECT_EQ(Line.WhyNot(), why);
    EXPECT_EQ(Line.IsInUse(), isInUse);
  }
}

TEST_F(LircLineTest, SetsAndTellsWhatItsDeviceCan) {
  const std::uint32_t receives = LIRC_CAN_REC_MODE2, sends = LIRC_CAN_SEND_PULSE;
  const std::map<unsigned long, std::uint32_t> hears = {{LIRC_SET_REC_MODE, LIRC_MODE_MODE2}},
                                               plays = {{LIRC_SET_SEND_MODE, LIRC_MODE_PULSE}};
  auto both = hears, all = plays;
  both.insert(plays.begin(), plays.end());
  all[LIRC_SET_SEND_CARRIER] = 36'000;
  struct Case {
    std::uint32_t Features;
    std::map<unsigned long, std::uint32_t> Set;
    std::string Why, Told;
  };
  const std::string carrier =
      "/dev/lirc0 cannot change its carrier: what should go out with 36000 Hz goes out with about 38000 Hz, "
      "and may be heard less far.";
  for (const Case& c :
       {Case{receives | sends, both, "", carrier},
        Case{receives, hears, "/dev/lirc0 receives only. Use another device to send.", ""},
        Case{sends, plays, "/dev/lirc0 sends only. Use another device to receive.", carrier},
        Case{sends | LIRC_CAN_SET_SEND_CARRIER, all, "/dev/lirc0 sends only. Use another device to receive.",
             ""},
        Case{LIRC_CAN_REC_SCANCODE,
             {},
             "/dev/lirc0 gives scancodes only, no lengths. Use a receiver that gives raw infrared.",
             ""},
        Case{0, {}, "/dev/lirc0 neither receives nor sends raw infrared. Use another device.", ""}}) {
    Device.Features = c.Features;
    Device.Set.clear();
    Told.clear();
    LircLine line(Device, "/dev/lirc0", Receiver, {},
                  [this](const std::string& text) { Told.push_back(text); });
    const bool opens = line.OpenCom(1) == 1;
    EXPECT_EQ(line.WhyNot(), opens ? "" : c.Why);
    for (int times = 0; times < 2; ++times) line.SetCarrier(36'000);
    EXPECT_EQ(Device.Set, c.Set) << c.Why;
    EXPECT_EQ(Told, c.Told.empty() ? std::vector<std::string>() : std::vector{c.Told}) << c.Why;
    const MappedPort port = {1, MappedPort::Kind::Lirc, "/dev/lirc0", {}, {}};
    const PortCheck check = CheckPort(Device, port, {"/nowhere", "/nowhere"});
    EXPECT_EQ(check.Why, c.Why);
    EXPECT_EQ(check.Opens, opens);
    EXPECT_EQ(check.Receives, opens && (c.Features & receives) != 0);
    EXPECT_EQ(check.Sends, opens && (c.Features & sends) != 0);
  }
}

}  // namespace
}  // namespace keplo
