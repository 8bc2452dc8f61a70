#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <vector>

#include "family_press.h"
#include "family_tables.h"
#include "line/press_capture.h"
#include "line/replay_line.h"
#include "signal/monitored_press.h"

namespace keplo::bench {

namespace {

constexpr int kPresses = 2000;  // of a cell
constexpr Analysis kAnalysis = Analysis::Second;

struct Damage {
  const char* Name;
  void (*Do)(PulseTrain& press, Dice& dice);
};

int MarksOf(const PulseTrain& press) { return static_cast<int>(press.size()) / 2; }

/// Makes one length of three, around a mark that is lost or a space that is.
void Join(PulseTrain& press, int place) {
  const auto at = press.begin() + place;
  *(at - 1) += *at + *(at + 1);
  press.erase(at, at + 2);
}

void LoseMark(PulseTrain& press, Dice& dice) {
  if (MarksOf(press) > 3) Join(press, 2 * dice.From(1, MarksOf(press) - 2));
}

void LoseMarks(PulseTrain& press, Dice& dice) {
  for (int lost = dice.From(2, 4); lost > 0; --lost) LoseMark(press, dice);
}

void MergeMarks(PulseTrain& press, Dice& dice) {
  constexpr int kGap = 5000;  // microseconds; what fills a longer space is no mark of the remote
  const int place = 2 * dice.From(1, MarksOf(press) - 2) + 1;
  if (press[static_cast<std::size_t>(place)] < kGap) Join(press, place);
}

void CutFront(PulseTrain& press, Dice& dice) {
  press.erase(press.begin(), press.begin() + 2 * dice.From(1, std::min(MarksOf(press) - 1, 12)));
}

/// Within the last frame, or the only one.
void CutBack(PulseTrain& press, Dice& dice) {
  const int silence = press.back();
  press.resize(
      static_cast<std::size_t>(2 * dice.From(std::max(1, MarksOf(press) - 12), MarksOf(press) - 1) - 1));
  press.push_back(silence);
}

void Stretch(PulseTrain& press, Dice& dice) {
  int& length = press[static_cast<std::size_t>(dice.From(0, static_cast<int>(press.size()) - 2))];
  length = length * dice.From(130, 200) / 100;
}

void Spike(PulseTrain& press, Dice& dice) {
  constexpr int kBeside = 60;
  const int place = dice.From(0, static_cast<int>(press.size()) - 2), width = dice.From(60, 300);
  const int run = press[static_cast<std::size_t>(place)];
  if (run < width + 2 * kBeside) return;
  const int ahead = dice.From(kBeside, run - width - kBeside);
  press[static_cast<std::size_t>(place)] = ahead;
  press.insert(press.begin() + place + 1, {width, run - width - ahead});
}

/// Longer or shorter by up to a millisecond, which is enough to make any digit another; half of them at the
/// cost of what follows.
void Shift(PulseTrain& press, Dice& dice) {
  constexpr int kLeast = 60, kGap = 6000;  // microseconds
  int place = dice.From(1, static_cast<int>(press.size()) - 3);
  while (press[static_cast<std::size_t>(place)] > kGap) --place;
  int& length = press[static_cast<std::size_t>(place)];
  int& next = press[static_cast<std::size_t>(place) + 1];
  int by = dice.From(100, 1000);
  if (dice.Percent(50) && length - by >= kLeast) by = -by;
  length += by;
  if (dice.Percent(50) && next - by >= kLeast) next -= by;
}

/// Some milliseconds of edges that are none of the remote's.
void Burst(PulseTrain& press, Dice& dice) {
  int total = 0;
  for (std::size_t i = 0; i + 1 < press.size(); ++i) total += press[i];
  const int begin = dice.From(1, total - 1), end = begin + dice.From(1000, 12'000);
  std::vector<int> edges = {0}, after;
  int time = 0;
  for (std::size_t i = 0; i + 1 < press.size(); ++i) {
    time += press[i];
    if (time < begin) edges.push_back(time);
    if (time > end) after.push_back(time);
  }
  for (int edge = begin; edge < end; edge += dice.From(50, 700)) edges.push_back(edge);
  if ((edges.size() + after.size()) % 2 != 0) edges.pop_back();
  edges.insert(edges.end(), after.begin(), after.end());
  const int silence = press.back();
  press.clear();
  for (std::size_t i = 1; i < edges.size(); ++i) press.push_back(edges[i] - edges[i - 1]);
  press.push_back(silence);
}

constexpr std::array kDamages = {Damage{"whole", [](PulseTrain&, Dice&) {}},
                                 Damage{"a mark missing", LoseMark},
                                 Damage{"2 to 4 missing", LoseMarks},
                                 Damage{"two marks merged", MergeMarks},
                                 Damage{"front cut", CutFront},
                                 Damage{"back cut", CutBack},
                                 Damage{"one length stretched", Stretch},
                                 Damage{"one length off by up to 1 ms", Shift},
                                 Damage{"a spike or hole", Spike},
                                 Damage{"a burst", Burst}};

class TableClock : public LineClock {
 public:
  std::chrono::microseconds Now() override { return time_; }
  void WaitUntil(std::chrono::microseconds time) override { time_ = std::max(time_, time); }

 private:
  std::chrono::microseconds time_{0};
};

LineOptions LineOf(int sampleTime) {
  LineOptions line;
  line.SampleTime = sampleTime;
  line.ReadBy = &kAnalysis;
  return line;
}

/// Whether a monitor that looks every 5 ms hears a code that was not sent.
bool HearsWrongCode(const PulseTrain& press, const std::string& sent, int sampleTime) {
  constexpr std::int32_t kUsualDelay = 10;
  const std::int16_t receiver = 0;
  ReplayLine line({Recording{"", {press}}}, receiver, LineOf(sampleTime));
  const auto clock = std::make_shared<TableClock>();
  line.PlayAgainst(clock);
  bool wrong = false;
  while (!line.Done()) {
    if (line.DCD() == 0) {
      std::string capture(kMonitorCaptureBytes, '\0');
      line.IRMonitor(capture, kUsualDelay);
      SignalState state;
      state.SampleTime = sampleTime;
      const MonitorReading reading = ReadCapture(capture, state, kAnalysis);
      wrong = wrong || (reading.Ended == Stage::Code && reading.Digits != sent);
    }
    clock->WaitUntil(clock->Now() + std::chrono::milliseconds(5));
  }
  return wrong;
}

void PrintCell(const PressFamily& family, const Damage& damage) {
  Dice dice(1);
  int right = 0, wrong = 0, replayed = 0;
  for (int count = 0; count < kPresses; ++count) {
    const PressOnAir sent = family.Make(dice, dice.From(1, 3));
    PulseTrain press = ReceivedAsReal(sent.Lengths, dice);
    damage.Do(press, dice);
    const int sampleTime = 50 + 5 * dice.From(0, 2);
    SignalState state;
    state.SampleTime = sampleTime;
    const MonitorReading reading =
        ReadCapture(SignalOfPress(press, kMonitorCaptureBytes, LineOf(sampleTime)), state, kAnalysis);
    if (reading.Ended == Stage::Code) ++(reading.Digits == sent.Code ? right : wrong);
    if (HearsWrongCode(press, sent.Code, sampleTime)) ++replayed;
  }
  constexpr double kTenThousand = 10'000.0 / kPresses;
  std::printf(" %.0f / %.0f / %.0f |", 100.0 * right / kPresses, wrong * kTenThousand,
              replayed * kTenThousand);
}

}  // namespace

void PrintDamage() {
  std::printf("\n### Damaged presses\n\n| |");
  for (const Damage& damage : kDamages) std::printf(" %s |", damage.Name);
  std::printf("\n|---|");
  for (std::size_t i = 0; i < kDamages.size(); ++i) std::printf("---|");
  std::printf("\n");
  for (const PressFamily& family : PressFamilies()) {
    std::printf("| %s |", family.Name);
    for (const Damage& damage : kDamages) PrintCell(family, damage);
    std::printf("\n");
  }
}

}  // namespace keplo::bench
