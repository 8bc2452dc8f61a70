#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "press_dice.h"
#include "signal/frame_times.h"
#include "signal/held_signs.h"
#include "signal/monitored_press.h"
#include "signal/raw/raw_digits.h"
#include "signal/raw/raw_index.h"
#include "signal/raw/raw_lesson.h"
#include "signal/raw/raw_send.h"
#include "signal/recorded_press.h"
#include "signal/stage_text.h"

namespace keplo::tests {
namespace {

using RunVector = std::vector<int>;

constexpr int kPresses = 3000;  // of each kind

std::string Inverse(std::string digits) {
  for (char& digit : digits) digit = digit == '1' ? '0' : '1';
  return digits;
}

Sent Nec(Dice& dice) {
  const std::string address = dice.Digits(8), other = dice.Digits(8), command = dice.Digits(8);
  const std::string again = dice.Once(2) ? Inverse(address) : dice.Once(2) ? address : other;
  const std::string digits = address + again + command + Inverse(command);
  const int unit = dice.From(460, 660), space = dice.Once(9) ? dice.From(1000, 5000) : 2250;
  return {digits, {DistanceRuns({16 * unit, 8 * unit}, unit, unit, 3 * unit, digits)}, {9000, space, 560}};
}

/// Pulse distance of any leader, lengths and number of digits.
Sent Distance(Dice& dice) {
  constexpr int kDigits[] = {12, 13, 14, 15, 16, 19, 23, 24, 28, 30, 31, 32, 40, 42, 47, 48, 55, 56};
  constexpr std::pair<int, int> kLeaders[] = {{8, 8}, {8, 4}, {16, 8}, {16, 4}, {9, 5}, {8, 2}, {4, 4}};
  std::string digits = dice.Digits(dice.Once(3) ? dice.From(5, 60) : kDigits[dice.Place(18)]);
  const std::string half = digits.substr(0, digits.size() / 2);
  if (dice.Once(3)) digits = half + Inverse(half);
  if (dice.Once(5)) digits[dice.Place(digits.size())] = '1';
  const int unit = dice.Once(4) ? dice.From(270, 950) : dice.From(400, 600), zero = dice.From(1, 2) * unit;
  const int one = zero + (dice.Once(2) ? 2 * unit : dice.From(6, 25) * unit / 10);
  auto [mark, space] = kLeaders[dice.Place(7)];
  const int leader = mark * unit + (dice.Once(3) ? dice.From(-9, 9) * unit / 5 : 0);
  const int behind = space * unit + (dice.Once(3) ? dice.From(-9, 9) * unit / 10 : 0);
  const RunVector head = dice.Once(8) ? RunVector{} : RunVector{leader, behind};
  return {digits, {DistanceRuns(head, unit, zero, one, digits)}, {leader, dice.From(1, behind), unit}};
}

Sent Sony(Dice& dice) {
  constexpr int kDigits[] = {12, 15, 20, 8, 13, 16, 14, 18, 19};
  const std::string digits = dice.Digits(kDigits[dice.Place(dice.Once(3) ? 9 : 3)]);
  const int unit = dice.Once(3) ? dice.From(380, 920) : dice.From(560, 640);
  const int leader = dice.Once(3) ? dice.From(20, 60) * unit / 10 : 4 * unit;
  const int one = dice.Once(5) ? dice.From(15, 42) * unit / 10 : 2 * unit;
  return {digits, {WidthRuns({leader, unit}, unit, unit, one, digits)}};
}

Sent Rc5(Dice& dice) {
  const std::string digits = "1" + dice.Digits(dice.Once(6) ? dice.From(11, 14) : 13);
  RunVector frame = Rc5Runs(digits, 1);
  const int unit = dice.Once(2) ? dice.From(540, 1150) : dice.From(800, 950);
  for (int& run : frame) run = run / 16 * unit;
  return {digits.substr(0, 2) + "0" + digits.substr(3), {frame}};
}

Sent Rc6(Dice& dice) {
  const std::string code = dice.Once(2) ? "1000" + dice.Digits(16) : "1110" + dice.Digits(32);
  const bool toggle = dice.Once(2);
  RunVector frame = Rc6Runs(code, toggle, dice.From(360, 540));
  if (dice.Once(4)) frame[dice.Place(2)] += dice.From(-500, 500);
  return {code, {frame}};
}

Sent InTurns(Dice& dice) {
  const std::string first = dice.Digits(16), second = dice.Digits(16);
  const int unit = dice.From(450, 650);
  const auto frame = [&](const std::string& digits, int clock) {
    return DistanceRuns({8 * clock, 4 * clock}, clock, clock, 3 * clock, digits);
  };
  const int other = dice.Once(4) ? unit + dice.From(-40, 40) : unit;
  return {std::min(first, second) + std::max(first, second), {frame(first, unit), frame(second, other)}};
}

Sent AfterRests(Dice& dice) {
  const std::string digits = dice.Digits(dice.From(10, 24));
  const int rest = dice.Once(2) ? dice.From(3800, 13000) : 6100,
            mark = dice.Once(4) ? dice.From(300, 900) : 400;
  return {digits, {DistanceRuns({mark, rest}, 400, 1650, 2750, digits)}, {}, rest};
}

Sent Fine(Dice& dice) {
  const std::string digits = dice.Digits(dice.From(8, 20));
  const int unit = dice.From(170, 340);
  return {digits, {DistanceRuns({12 * unit, 6 * unit}, unit, unit, 3 * unit, digits)}};
}

/// Parts of a message of digits of three values, which no line code has.
Sent Message(Dice& dice) {
  Sent sent{"", {}, {}, dice.From(4000, 45000)};
  const int step = dice.Once(4) ? dice.From(100, 2200) : 430;
  for (int part = dice.From(1, 3); part > 0; --part) {
    RunVector frame = {3500, 1750};
    for (int i = dice.From(5, 20); i > 0; --i) frame.insert(frame.end(), {430, 430 + step * dice.From(0, 2)});
    frame.push_back(430);
    sent.Frames.push_back(frame);
  }
  return sent;
}

Sent Lamp(Dice& dice) {
  RunVector pulses;
  const int mark = dice.From(200, 3000), space = dice.From(200, 4000), stray = dice.From(0, 300);
  for (int i = dice.From(8, 60); i > 0; --i)
    pulses.insert(pulses.end(), {mark + dice.From(0, stray), space + dice.From(0, stray)});
  pulses.push_back(mark);
  return {"", {pulses}};
}

std::ostream& operator<<(std::ostream& out, const MonitorReading& reading) {
  return out << StageName(reading.Ended) << reading.Digits << reading.Toggle.value_or(false) << reading.Dittos
             << reading.Leader << ' ' << reading.SecondTap << reading.SecondToggle.value_or(false) << ' ';
}

std::ostream& operator<<(std::ostream& out, const RecordReading& reading) {
  out << WhyNoCode(reading) << static_cast<int>(reading.ReadBy) << reading.BaseT << reading.Decoded
      << reading.Code << reading.Repeats << reading.SyncType.value_or(9) << reading.Toggle.value_or('-');
  return out << reading.SendAs << RunLengthsText(reading.Runs.Zeros) << ' ';
}

std::ostream& operator<<(std::ostream& out, const FramesHeard& heard) {
  out << heard.Frames << heard.Alike << heard.Others << heard.TooFine << static_cast<int>(heard.Doubt);
  for (const std::size_t place : heard.Differ) out << '.' << place;
  return out << heard.MarkLengths << heard.SpaceLengths << ' ';
}

/// What became of presses, and a checksum of everything that is told of them.
struct Tally {
  std::map<std::string, int> Ends;
  std::uint64_t Sum = 0;

  void Take(const std::string& end, const std::string& told) {
    ++Ends[end];
    Sum = 31 * Sum + TextHash(told);
  }
  std::string Text() const {
    std::string text;
    for (const auto& [end, count] : Ends)
      text += end == "wrong" ? "" : std::to_string(count) + " " + end + ", ";
    return text + "sum " + std::to_string(Sum % 1'000'000);
  }
};

struct Kind {
  const char* Name;
  Sent (*Draw)(Dice& dice);
  int MostWrong;
  std::string Read;
};

Tally ReadMany(const Kind& kind) {
  Dice dice(static_cast<unsigned>(TextHash(kind.Name)));
  Tally tally;
  SignalState state;
  MonitorReading reading;
  RecordReading recording;
  for (int press = 0; press < kPresses; ++press) {
    const Sent sent = kind.Draw(dice);
    state.SampleTime = dice.Once(4) ? 40 : kNominalSampleTime;
    const std::string capture = Heard(sent, dice, state.SampleTime, dice.From(1, 4));
    const std::string monitored = Padded(capture);
    std::ostringstream told;
    ReadCapture(monitored, state, Analysis::First, reading);
    told << reading << CommonLengthsOf(state.Measured).Mark << CommonLengthsOf(state.Measured).Space;
    ReadCapture(monitored, state, Analysis::Second, reading);
    const RunSpan runs = state.Runs.Read(state.Samples);
    const std::vector<TimedPiece> pieces = PiecesIn(runs, state.SampleTime);
    const UsualRepeat usual{FramePeriod(pieces) / 2.0, !sent.Ditto.empty()};
    told << reading << state.Second.Heard() << usual.Longest << FindSecondTap(pieces, usual, state.SampleTime)
         << AreDittos(runs, state.Measured.BaseT, reading.Leader, state.SampleTime)
         << IsReadByMonitor(monitored, sent.Digits, state.SampleTime);
    for (const Analysis analysis : {Analysis::First, Analysis::Second}) {
      ReadRecordedCapture(Padded(capture, kRecordCaptureBytes), state, analysis, recording);
      told << recording;
    }
    const bool isCode = reading.Ended == Stage::Code, isRight = reading.Digits == sent.Digits;
    tally.Take(isCode ? (isRight ? "right" : "wrong") : std::string(StageName(reading.Ended)), told.str());
  }
  return tally;
}

/// Digits that nobody sent may only become fewer.
void Expect(Tally tally, const Kind& kind) {
  EXPECT_EQ(tally.Text(), kind.Read) << kind.Name;
  EXPECT_LE(tally.Ends["wrong"], kind.MostWrong) << kind.Name;
}

/// Whoever makes readings better finds other counts here, and sees by them whether they are. A sum that
/// differs beside equal counts is a detail that is told otherwise.
TEST(ManyPresses, AreReadAsEver) {
  const Kind kinds[] = {
      {"NEC", Nec, 0,
       "1074 doubtful, 13 ends-in-mark, 61 length, 10 no-frame, 322 no-timing, 1430 right, 90 unknown, sum "
       "362699"},
      {"pulse distance", Distance, 116,
       "1767 doubtful, 12 ends-in-mark, 146 length, 38 no-frame, 547 no-timing, 233 right, 141 unknown, sum "
       "501789"},
      {"SONY", Sony, 71,
       "996 doubtful, 5 ends-in-mark, 128 length, 44 no-frame, 397 no-timing, 1199 right, 160 unknown, sum "
       "433800"},
      {"RC5", Rc5, 3,
       "523 doubtful, 4 ends-in-mark, 426 no-frame, 304 no-timing, 1709 right, 31 unknown, sum 660072"},
      {"RC6", Rc6, 4,
       "784 doubtful, 8 ends-in-mark, 5 length, 84 no-frame, 218 no-timing, 1802 right, 95 unknown, sum "
       "229669"},
      {"two in turns", InTurns, 0,
       "2109 doubtful, 143 length, 14 no-frame, 219 no-timing, 449 right, 66 unknown, sum 807162"},
      {"frames after rests", AfterRests, 0, "2053 doubtful, 162 length, 750 no-timing, 35 right, sum 123135"},
      {"short base times", Fine, 3,
       "1254 doubtful, 10 ends-in-mark, 479 length, 50 no-frame, 241 no-timing, 444 right, 519 unknown, sum "
       "143895"},
      {"messages of three digits", Message, 42,
       "918 doubtful, 14 ends-in-mark, 49 length, 49 no-frame, 1308 no-timing, 620 unknown, sum 938986"},
      {"a lamp", Lamp, 0,
       "201 doubtful, 95 ends-in-mark, 10 length, 167 no-frame, 2366 no-timing, 161 unknown, sum 446236"},
  };
  for (const Kind& kind : kinds) Expect(ReadMany(kind), kind);
}

/// Learns raw commands of a few presses each, and hears them again.
class RawStudy {
 public:
  explicit RawStudy(const Kind& kind) : kind_(kind), dice_(static_cast<unsigned>(TextHash(kind.Name))) {}

  void Learn() {
    Sent key = kind_.Draw(dice_);
    if (key.Gap == 0) key.Gap = 25000;
    if (dice_.Once(2) && !keys_.empty()) {  // one that is hardly different
      key.Frames = keys_.back().Frames;
      auto& frame = key.Frames[dice_.Place(key.Frames.size())];
      std::swap(frame[3], frame[2 * dice_.Place(frame.size() / 2) + 1]);
    }
    RawLesson lesson;
    for (int press = dice_.From(1, 4); press > 0; --press) {
      const std::string place = dice_.Once(3) ? "" : std::to_string(press / 2);
      lesson.Hear(Hear(key, static_cast<int>(key.Frames.size()) * dice_.From(1, 2)), place);
    }
    std::ostringstream told;
    told << lesson.AreAlike() << lesson.AreTurns() << lesson.TakesTurns();
    std::vector<RawLengths> forms;
    for (const RawLesson::Form& form : lesson.Forms()) {
      forms.push_back(form.Signal.Lengths);
      told << form.IsConfirmed() << RunLengthsText(forms.back()) << RunLengthsText(form.Signal.Levels)
           << CaptureOfLengths(forms.back()) << SlotsOfLengths(forms.back(), 30);
    }
    tally_.Take(std::to_string(forms.size()) + " forms", told.str());
    index_.Add({std::to_string(keys_.size()), forms});
    keys_.push_back(key);
  }

  void Find() {
    const Sent& key = keys_[dice_.Place(keys_.size())];
    const int frames = static_cast<int>(key.Frames.size()) + dice_.From(-1, 2);
    const RawMatch match = index_.Find(Hear(key, std::max(1, frames)));
    const std::string digits(match.Digits);
    const bool isRight = !digits.empty() && keys_[std::stoul(digits)].Frames == key.Frames;
    tally_.Take(digits.empty() ? "unknown"
                : !match.Alone ? "alike"
                : isRight      ? "right"
                               : "wrong",
                digits + "," + std::string(match.Other) + std::to_string(match.IsClose));
  }

  const Tally& Told() const { return tally_; }

 private:
  HeardLengths Hear(const Sent& sent, int frames) {
    state_.SampleTime = dice_.Once(4) ? 40 : kNominalSampleTime;
    state_.Samples.Read(Heard(sent, dice_, state_.SampleTime, frames));
    return HeardIn(state_.Runs.Read(state_.Samples), state_.SampleTime);
  }

  const Kind& kind_;
  Dice dice_;
  Tally tally_;
  SignalState state_;
  RawIndex index_;
  std::vector<Sent> keys_;
};

TEST(ManyPresses, OfRawCommandsAreFoundAsEver) {
  const Kind kinds[] = {
      {"messages", Message, 13,
       "1 0 forms, 18 1 forms, 24 2 forms, 12 3 forms, 5 4 forms, 47 alike, 818 right, 2122 "
       "unknown, sum 971975"},
      {"pulse distance", Distance, 4,
       "1 0 forms, 18 1 forms, 26 2 forms, 14 3 forms, 1 4 forms, 303 alike, 849 right, 1844 "
       "unknown, sum 941371"},
      {"two in turns", InTurns, 8,
       "1 0 forms, 15 1 forms, 29 2 forms, 14 3 forms, 1 4 forms, 48 alike, 815 right, 2129 "
       "unknown, sum 917023"},
      {"frames after rests", AfterRests, 0,
       "3 0 forms, 18 1 forms, 25 2 forms, 12 3 forms, 2 4 forms, 334 alike, 884 right, 1782 unknown, sum "
       "966573"},
  };
  for (const Kind& kind : kinds) {
    RawStudy study(kind);
    for (int key = 0; key < 60; ++key) study.Learn();
    for (int press = 0; press < kPresses; ++press) study.Find();
    Expect(study.Told(), kind);
  }
}

}  // namespace
}  // namespace keplo::tests
