#include "shell/held_key.h"

#include "doubles/test_clock.h"
#include "line/replay_line.h"
#include "shell_fixture.h"
#include "signal/signal_builder.h"
#include "synth/synth.h"

namespace keplo::tests {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr milliseconds kFrame = 60ms;
constexpr milliseconds kBuffer = 224ms;

/// A signal on the line; by default 60 ms long.
struct Signal {
  const char* What;  // "code", "ditto", "unread", or the digits of another code
  milliseconds At;
  milliseconds Length = kFrame;
  milliseconds WatchedFrom = 0ms;
  std::optional<bool> Toggle = {};
  bool Dittos = false;
  milliseconds Period = 108ms;
};

/// P for a press, H for a hold, R for a release, as a monitor reports them.
std::string Told(const std::vector<Signal>& signals) {
  HeldKey key;
  std::string reported;
  for (const Signal& signal : signals) {
    const AirTime air = {signal.At, signal.At + signal.Length, kBuffer - signal.Length, signal.WatchedFrom};
    const std::string what = signal.What;
    if (what != "unread" && what != "ditto") {
      if (key.Hear({what, Analysis::Second, kNec, 10, signal.Toggle, signal.Dittos, signal.Period}, air)) {
        reported += 'R';
      }
    } else if (!key.IsContinuedAt(air)) {
      if (key.Release()) reported += 'R';
      continue;
    } else if (what == "ditto") {
      key.HearDitto(air);
    } else {
      key.HearUnread(air);
      continue;
    }
    reported += key.Press()->Captures == 1 ? 'P' : 'H';
  }
  return reported;
}

TEST(HeldKey, DistinguishesOnePressFromTwo) {
  const std::tuple<const char*, std::vector<Signal>, const char*> cases[] = {
      {"a repeat in its time", {{"code", 0ms}, {"code", 108ms}, {"code", 216ms}}, "PHH"},
      {"one repeat lost", {{"code", 0ms}, {"code", 216ms}}, "PH"},
      {"a tap between two repeats", {{"code", 0ms}, {"code", 180ms}}, "PRP"},
      {"a tap later than any repeat", {{"code", 0ms, kFrame, 0ms, {}, false, 0ms}, {"code", 230ms}}, "PRP"},
      {"two taps", {{"code", 0ms}, {"code", 311ms}}, "PRP"},
      {"two quick taps of a fast repeater",
       {{"code", 0ms, 20ms, 0ms, {}, false, 45ms}, {"code", 160ms, 20ms}},
       "PRP"},
      {"another key", {{"code", 0ms}, {"other", 100ms}, {"code", 200ms}}, "PRPRP"},
      {"a toggle that flips", {{"code", 0ms, kFrame, 0ms, true}, {"code", 120ms, kFrame, 0ms, false}}, "PRP"},
      {"a toggle that stays", {{"code", 0ms, kFrame, 0ms, true}, {"code", 120ms, kFrame, 0ms, true}}, "PH"},
      {"dittos", {{"code", 0ms}, {"ditto", 108ms, 12ms}, {"ditto", 216ms, 12ms}}, "PHH"},
      {"a ditto too late", {{"code", 0ms}, {"ditto", 311ms, 12ms}}, "PR"},
      {"a frame where the key sends dittos",
       {{"code", 0ms}, {"ditto", 108ms, 12ms}, {"code", 216ms}},
       "PHRP"},
      {"a frame after a capture with dittos", {{"code", 0ms, 200ms, 0ms, {}, true}, {"code", 224ms}}, "PRP"},
      {"held through a pause", {{"code", 0ms, 180ms}, {"code", 600ms, 180ms, 524ms}}, "PH"},
      {"let go before a pause", {{"code", 0ms, 50ms}, {"code", 600ms, 180ms, 524ms}}, "PRP"},
      {"let go in a pause", {{"code", 0ms, 180ms}, {"code", 674ms, 180ms, 524ms}}, "PRP"},
      {"one signal that cannot be read", {{"code", 0ms}, {"unread", 150ms}, {"code", 300ms}}, "PH"},
      {"a line full of noise", {{"code", 0ms}, {"unread", 150ms}, {"unread", 300ms}, {"code", 470ms}}, "PRP"},
  };
  for (const auto& [name, signals, reported] : cases) EXPECT_EQ(Told(signals), reported) << name;
}

/// A control on a line that plays against a clock.
class OnePress : public ShellTest {
 protected:
  static constexpr const char* kSony = "101010010000";
  static constexpr const char* kRc5 = "11000000001100";

  /// What a monitor reports for presses, each held for a time.
  std::string Monitored(std::int16_t kind, const std::string& bits,
                        const std::vector<milliseconds>& presses) {
    Recording recording{"a", {}};
    for (const milliseconds held : presses) {
      SynthOptions options;
      options.Repeats = static_cast<int>(held / (kind == keplo::kSony ? 45ms : 108ms));
      recording.Presses.push_back(SynthPress(kind, bits, options));
    }
    return Monitored(recording);
  }

  std::string Monitored(const Recording& recording) {
    const auto clock = std::make_shared<TestClock>();
    const std::int16_t receiver = 0;
    ReplayLine line({recording}, receiver);
    line.PlayAgainst(clock);
    mod_ = std::make_unique<KeploMod>(folder_.Path(), files_);
    Keplo control(*mod_, line, KeploWindows{boxes_, dialog_}, clock_);
    control.LineTime = [&] { return clock->Time; };
    std::string reported;
    control.OnKey = [&](KeyChange change, const KeyPress& key) {
      EXPECT_EQ(key.Command, "ANY&KEY");
      reported += std::string("PHR")[static_cast<std::size_t>(change)];
    };
    control.TriggerInputEvent = [&](HostInputEvent&) { reported += 'e'; };
    taps_ = 0;
    control.OnPress = [&](const TickReport& tick) { taps_ += tick.Taps; };
    EXPECT_EQ(control.InputInitialise(nullptr), 1);
    mod_->Settings.Analysis = analysis_;
    control.InputStartMonitoring();
    while (!line.Done() || control.TimeToRelease()) {
      control.Timer1.Tick();
      clock->Time += 2ms;
    }
    return reported;
  }

  void Bind(const std::string& code) {
    std::filesystem::remove(folder_.Path() / "inputKeplo.mdb");
    WriteConfig(Protocol("ANY", {"G" + code + ",KEY"}));
    WriteEvents({{"17", "Lamp on", "", "ANY&KEY", true, 0}});
  }

  Analysis analysis_ = Analysis::Second;
  std::ptrdiff_t taps_ = 0;  // counted of what was monitored last
};

TEST_F(OnePress, IsOnePressHoweverLongTheKeyIsHeld) {
  for (const auto& [kind, code] :
       {std::pair(kNec, kNecDigits), {keplo::kSony, std::string(kSony)}, {keplo::kRc5, kRc5}}) {
    Bind(code);
    for (const auto& [presses, reported] : std::vector<std::pair<std::vector<milliseconds>, std::string>>{
             {{50ms}, "PeR"},
             {{400ms}, "PeR"},  // released in the pause after the event
             {{3000ms}, "PeHeHeHeHeHeR"},
             {{50ms, 1000ms, 50ms}, "PeRPeHeRPeR"}}) {
      EXPECT_EQ(Monitored(kind, code, presses), reported) << kind;
    }
  }
}

TEST_F(OnePress, HoldsNothingOnByDittosWithTheFirstAnalysis) {
  analysis_ = Analysis::First;
  Bind(kNecDigits);
  EXPECT_EQ(Monitored(kNec, kNecDigits, {1000ms}), "PeR");
}

TEST_F(OnePress, IsToldWithoutAnEventToo) {
  Bind(kNecDigits);
  std::filesystem::remove(folder_.Path() / "inputKeplo.mdb");
  WriteEvents({});
  EXPECT_EQ(Monitored(kNec, kNecDigits, {50ms}), "PR");
}

TEST_F(OnePress, IsOnePressOfAlternatingFrames) {
  const std::string first = "00100000110111110001000011101111", second = "00100000110111111001000001101111";
  Bind(first + second);
  SynthOptions frame;
  frame.Repeats = 0;
  frame.GapUs = 26'000;
  PulseTrain press;
  for (int frames = 1; frames < 14; ++frames) {
    const PulseTrain next = SynthPress(kNec, frames % 2 == 1 ? first : second, frame);
    press.insert(press.end(), next.begin(), next.end());
    if (frames < 2) continue;
    EXPECT_EQ(Monitored({"a", {press}}), frames < 7 ? "PeR" : frames < 13 ? "PeHeR" : "PeHeHeR") << frames;
  }
}

TEST_F(OnePress, IsTwoPressesOfTwoTapsInOneCapture) {
  const std::string flipped = "11100000001100";
  const std::tuple<std::int16_t, std::string, std::string, int, const char*> rows[] = {
      {kNec, kNecDigits, kNecDigits, 80'000, "PeRPeR"},
      {kNec, kNecDigits, kNecDigits, 40'000, "PeR"},
      {keplo::kRc5, kRc5, flipped, 60'000, "PeRPeR"},
      {keplo::kRc5, kRc5, kRc5, 149'000, "PeR"},
  };
  for (const auto& [kind, first, second, pause, reported] : rows) {
    Bind(first);
    SynthOptions once;
    once.Repeats = 0;
    PulseTrain press = SynthPress(kind, first, once);
    press.back() = pause;
    const PulseTrain tap = SynthPress(kind, second, once);
    press.insert(press.end(), tap.begin(), tap.end());
    EXPECT_EQ(Monitored({"a", {press}}), reported) << kind << " " << pause;
    EXPECT_EQ(taps_, std::ranges::count(std::string_view(reported), 'P')) << kind << " " << pause;
  }
}

/// Events of a press whose first capture is followed by a pause, in which the line has kept a second one.
TEST_F(OnePress, RaisesNoEventForCapturesQueuedDuringThePause) {
  Bind(kSony);
  Keplo& control = Start();
  std::chrono::microseconds time = 1s;
  control.LineTime = [&] { return time; };
  control.OnKey = [](KeyChange, const KeyPress& key) { EXPECT_EQ(key.Zone, 6); };
  SynthOptions fills;
  fills.Repeats = 4;
  const std::string capture = CaptureOfPress(SynthPress(keplo::kSony, kSony, fills), 510, {});
  const auto tick = [&](std::chrono::microseconds begin, std::chrono::microseconds end) {
    line_.Captures = {capture};
    line_.Heard = SignalOrigin{0, 6, begin, end};
    control.Timer1.Tick();
  };
  const struct {
    milliseconds Begin, End;
    std::size_t Events[2];  // by the first and by the second analysis
  } rows[] = {{230ms, 255ms, {1, 1}}, {230ms, 454ms, {2, 1}}, {400ms, 624ms, {2, 2}}, {440ms, 500ms, {2, 2}}};
  for (const auto& [begin, end, events] : rows) {
    for (const Analysis analysis : {Analysis::First, Analysis::Second}) {
      mod_->Settings.Analysis = analysis;
      raised_.clear();
      const std::chrono::microseconds pressed = time += 10s;
      control.Timer1.Tick();  // the key before is let go
      time = pressed + 224ms;
      tick(pressed, time);
      time += 200ms;
      tick(pressed + begin, pressed + end);
      EXPECT_EQ(raised_.size(), events[analysis == Analysis::Second ? 1 : 0])
          << begin.count() << "-" << end.count();
    }
  }
}

}  // namespace
}  // namespace keplo::tests
