#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "press_dice.h"
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

std::string Inverse(std::string digits) {
  for (char& digit : digits) digit = digit == '1' ? '0' : '1';
  return digits;
}

Sent Nec(Dice& dice) {
  const std::string address = dice.Digits(8), other = dice.Digits(8), command = dice.Digits(8);
  const std::string again = dice.Once(2) ? Inverse(address) : dice.Once(2) ? address : other;
  const std::string digits = address + again + command + Inverse(command);
  const int unit = dice.From(520, 620);
  return {digits, {DistanceRuns({16 * unit, 8 * unit}, unit, unit, 3 * unit, digits)}, {9000, 2250, 560}};
}

Sent Distance(Dice& dice) {
  constexpr int kDigits[] = {6, 12, 13, 15, 16, 20, 22, 23, 24, 28, 32, 36, 40, 42, 47, 48, 56};
  constexpr std::pair<int, int> kLeaders[] = {{8, 8}, {8, 4}, {16, 8}, {16, 4}, {9, 5}, {8, 2}, {4, 4}};
  std::string digits = dice.Digits(kDigits[dice.Place(std::size(kDigits))]);
  const std::string half = digits.substr(0, digits.size() / 2);
  if (dice.Once(3)) digits = half + Inverse(half);
  const int unit = dice.From(350, 900), zero = dice.From(1, 2), one = zero + dice.From(1, 2);
  const auto [mark, space] = kLeaders[dice.Place(std::size(kLeaders))];
  const RunVector leader = dice.Once(8) ? RunVector{} : RunVector{mark * unit, space * unit};
  return {digits,
          {DistanceRuns(leader, unit, zero * unit, one * unit, digits)},
          {mark * unit, dice.From(1, space) * unit, unit}};
}

Sent Sony(Dice& dice) {
  constexpr int kDigits[] = {12, 15, 20, 8, 13, 16};
  const std::string digits = dice.Digits(kDigits[dice.Place(dice.Once(3) ? 6 : 3)]);
  const int unit = dice.From(500, 680);
  return {digits, {WidthRuns({4 * unit, unit}, unit, unit, 2 * unit, digits)}};
}

Sent Rc5(Dice& dice) {
  const std::string digits = "1" + dice.Digits(dice.Once(6) ? dice.From(11, 14) : 13);
  RunVector frame = Rc5Runs(digits, 1);
  const int unit = dice.From(620, 1000);
  for (int& run : frame) run = run / 16 * unit;
  return {digits.substr(0, 2) + "0" + digits.substr(3), {frame}};
}

Sent Rc6(Dice& dice) {
  const std::string code = dice.Once(2) ? "1000" + dice.Digits(16) : "1110" + dice.Digits(32);
  const bool toggle = dice.Once(2);
  return {code, {Rc6Runs(code, toggle, dice.From(380, 520))}};
}

Sent InTurns(Dice& dice) {
  const std::string first = dice.Digits(16), second = dice.Digits(16);
  const int unit = dice.From(450, 650);
  const auto frame = [&](const std::string& digits) {
    return DistanceRuns({8 * unit, 4 * unit}, unit, unit, 3 * unit, digits);
  };
  return {std::min(first, second) + std::max(first, second), {frame(first), frame(second)}};
}

Sent AfterRests(Dice& dice) {
  const std::string digits = dice.Digits(dice.From(14, 24));
  return {digits, {DistanceRuns({400, 6100}, 400, 1650, 2750, digits)}, {}, 6100};
}

Sent Fine(Dice& dice) {
  const std::string digits = dice.Digits(16);
  const int unit = dice.From(190, 330);
  return {digits, {DistanceRuns({12 * unit, 6 * unit}, unit, unit, 3 * unit, digits)}};
}

/// Parts of a message of digits of three values, which no line code has.
Sent Message(Dice& dice) {
  Sent sent{"", {}, {}, dice.From(7000, 30000)};
  for (int part = dice.From(1, 3); part > 0; --part) {
    RunVector frame = {3500, 1750};
    for (int i = dice.From(8, 20); i > 0; --i) frame.insert(frame.end(), {430, 430 + 430 * dice.From(0, 2)});
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
             << reading.Leader << ' ';
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
    for (const auto& [end, count] : Ends) text += std::to_string(count) + " " + end + ", ";
    return text + "sum " + std::to_string(Sum % 1'000'000);
  }
};

struct Kind {
  const char* Name;
  Sent (*Draw)(Dice& dice);
  std::string Read;
};

std::string ReadMany(const Kind& kind) {
  Dice dice(static_cast<unsigned>(TextHash(kind.Name)));
  Tally tally;
  SignalState state;
  MonitorReading reading;
  RecordReading recording;
  for (int press = 0; press < 2000; ++press) {
    const Sent sent = kind.Draw(dice);
    state.SampleTime = dice.Once(4) ? 40 : kNominalSampleTime;
    const std::string capture = Heard(sent, dice, state.SampleTime, dice.From(1, 4));
    const std::string monitored = Padded(capture);
    std::ostringstream told;
    ReadCapture(monitored, state, Analysis::First, reading);
    told << reading << CommonLengthsOf(state.Measured).Mark << CommonLengthsOf(state.Measured).Space;
    ReadCapture(monitored, state, Analysis::Second, reading);
    const RunSpan runs = state.Runs.Read(state.Samples);
    told << reading << state.Second.Heard() << FramePeriod(runs)
         << AreDittos(runs, state.Measured.BaseT, reading.Leader)
         << IsReadByMonitor(monitored, sent.Digits, state.SampleTime);
    for (const Analysis analysis : {Analysis::First, Analysis::Second}) {
      ReadRecordedCapture(Padded(capture, kRecordCaptureBytes), state, analysis, recording);
      told << recording;
    }
    const bool isCode = reading.Ended == Stage::Code, isRight = reading.Digits == sent.Digits;
    tally.Take(isCode ? (isRight ? "right" : "other") : std::string(StageName(reading.Ended)), told.str());
  }
  return tally.Text();
}

TEST(ManyPresses, AreReadAsEver) {
  const Kind kinds[] = {
      {"NEC", Nec,
       "348 doubtful, 4 ends-in-mark, 16 length, 97 no-timing, 1513 right, 22 unknown, sum 652386"},
      {"pulse distance", Distance,
       "938 doubtful, 16 ends-in-mark, 141 length, 15 no-frame, 441 no-timing, 86 other, 233 right, 130 "
       "unknown, sum 157391"},
      {"SONY", Sony,
       "327 doubtful, 113 length, 7 no-frame, 65 no-timing, 4 other, 1471 right, 13 unknown, sum 347797"},
      {"RC5", Rc5,
       "167 doubtful, 5 ends-in-mark, 166 no-frame, 119 no-timing, 2 other, 1523 right, 18 unknown, sum "
       "440468"},
      {"RC6", Rc6,
       "197 doubtful, 2 ends-in-mark, 33 no-frame, 96 no-timing, 1 other, 1635 right, 36 unknown, sum "
       "740737"},
      {"two in turns", InTurns,
       "1333 doubtful, 1 ends-in-mark, 52 length, 70 no-timing, 517 right, 27 unknown, sum 67669"},
      {"frames after rests", AfterRests, "1866 doubtful, 16 length, 118 no-timing, sum 73547"},
      {"short base times", Fine,
       "754 doubtful, 13 ends-in-mark, 38 length, 8 no-frame, 101 no-timing, 3 other, 683 right, 400 "
       "unknown, sum 613027"},
      {"messages of three digits", Message,
       "631 doubtful, 2 ends-in-mark, 26 length, 9 no-frame, 828 no-timing, 51 other, 453 unknown, sum "
       "174272"},
      {"a lamp", Lamp,
       "81 doubtful, 56 ends-in-mark, 2 length, 99 no-frame, 1654 no-timing, 108 unknown, sum 766056"},
  };
  for (const Kind& kind : kinds) EXPECT_EQ(ReadMany(kind), kind.Read) << kind.Name;
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
                               : "other",
                digits + "," + std::string(match.Other) + std::to_string(match.IsClose));
  }

  std::string Text() const { return tally_.Text(); }

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
      {"messages", Message,
       "20 1 forms, 26 2 forms, 10 3 forms, 4 4 forms, 25 alike, 765 right, 1210 unknown, sum 50053"},
      {"pulse distance", Distance,
       "3 0 forms, 15 1 forms, 32 2 forms, 6 3 forms, 4 4 forms, 171 alike, 3 other, 831 right, 995 unknown, "
       "sum 759249"},
      {"two in turns", InTurns,
       "23 1 forms, 26 2 forms, 10 3 forms, 1 4 forms, 110 alike, 1 other, 768 right, 1121 unknown, sum "
       "857577"},
      {"frames after rests", AfterRests,
       "19 1 forms, 25 2 forms, 14 3 forms, 2 4 forms, 240 alike, 1 other, 980 right, 779 unknown, sum "
       "346973"},
  };
  for (const Kind& kind : kinds) {
    RawStudy study(kind);
    for (int key = 0; key < 60; ++key) study.Learn();
    for (int press = 0; press < 2000; ++press) study.Find();
    EXPECT_EQ(study.Text(), kind.Read) << kind.Name;
  }
}

}  // namespace
}  // namespace keplo::tests
