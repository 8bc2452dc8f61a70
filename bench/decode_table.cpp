// Prints how many key presses the monitor reads, as the markdown tables of docs/decode-rates.md.
#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "doubles/dice.h"
#include "family_tables.h"
#include "line/press_capture.h"
#include "signal/decode.h"
#include "signal/first_analysis.h"
#include "signal/monitored_press.h"
#include "signal/sample_bits.h"
#include "synth/synth.h"

namespace {

using namespace keplo;
using tests::Dice;

constexpr int kCodesPerCell = 1000;

std::string LowBitFirst(int value, int bits) {
  std::string digits;
  for (int bit = 0; bit < bits; ++bit) digits += (value >> bit & 1) != 0 ? '1' : '0';
  return digits;
}

std::string NecCode(Dice& dice) {
  const int address = dice.From(0, 255);
  const int command = dice.From(0, 255);
  return LowBitFirst(address, 8) + LowBitFirst(255 - address, 8) + LowBitFirst(command, 8) +
         LowBitFirst(255 - command, 8);
}

std::string SonyCode(Dice& dice) { return LowBitFirst(dice.From(0, 0xFFF), 12); }

std::string Rc5Code(Dice& dice) { return "11" + LowBitFirst(dice.From(0, 0xFFF), 12); }

struct Protocol {
  std::int16_t Kind;
  std::string (*RandomCode)(Dice& dice);
};
constexpr std::array kProtocols = {Protocol{kNec, NecCode}, Protocol{kSony, SonyCode},
                                   Protocol{kRc5, Rc5Code}};

struct Conditions {
  SynthOptions Remote;
  LineOptions Line;
};

/// Sets what a cell is about, anew for every code.
using Setter = std::function<void(Conditions& conditions, Dice& dice)>;

void PrintCell(const Protocol& protocol, bool shape, const Setter& set) {
  Dice dice(1);  // the same presses with shaping and without
  int right = 0;
  int wrong = 0;
  for (int count = 0; count < kCodesPerCell; ++count) {
    const std::string bits = protocol.RandomCode(dice);
    Conditions conditions;
    conditions.Remote.Seed = dice.Seed();
    conditions.Line.Shape = shape;
    set(conditions, dice);

    SignalState state;
    state.SampleTime = conditions.Line.SampleTime;
    const PulseTrain press = SynthPress(protocol.Kind, bits, conditions.Remote);
    const MonitorReading reading =
        ReadCapture(CaptureOfPress(press, kMonitorCaptureBytes, conditions.Line), state);
    if (reading.Ended != Stage::Code) continue;
    std::string sent = bits;
    if (protocol.Kind == kRc5) sent[kToggleBitOffset] = '0';
    ++(reading.Digits == sent ? right : wrong);
  }
  std::printf(" %.1f %% / %d |", 100.0 * right / kCodesPerCell, wrong);
}

void PrintRow(const std::string& label, const Setter& set) {
  std::printf("| %s |", label.c_str());
  for (const Protocol& protocol : kProtocols) {
    for (const bool shape : {false, true}) PrintCell(protocol, shape, set);
  }
  std::printf("\n");
}

void PrintHead(const std::string& title, const std::string& column) {
  std::printf(
      "\n## %s\n\n| %s | NEC as recorded | NEC shaped | SONY as recorded | SONY shaped | RC5 as recorded | "
      "RC5 shaped |\n|---|---|---|---|---|---|---|\n",
      title.c_str(), column.c_str());
}

void PrintTable(const std::string& title, const std::string& column, std::span<const int> values,
                void (*set)(Conditions& conditions, int value)) {
  PrintHead(title, column);
  for (const int value : values) {
    PrintRow(std::to_string(value), [&](Conditions& conditions, Dice&) { set(conditions, value); });
  }
}

void LikeRealRemotes(Conditions& conditions, Dice& dice) {
  conditions.Remote.MarkExcessUs = dice.From(-40, 130);
  conditions.Remote.JitterUs = dice.From(1, 25);
  conditions.Remote.ClockError = dice.From(-55, 40) / 1000.0;
  conditions.Remote.Repeats = dice.From(0, 2);
}

/// A user-defined protocol: lengths in microseconds, and a number of digits.
struct OwnProtocol {
  bool ByWidth = false;
  int Unit = 0, Longer = 0;
  int LeaderMark = 0, LeaderSpace = 0;

  std::vector<int> Frame(const std::string& digits) const {
    std::vector<int> frame = {LeaderMark, LeaderSpace};
    for (const char digit : digits) {
      const int told = digit == '1' ? Longer : Unit;
      frame.insert(frame.end(), {ByWidth ? told : Unit, ByWidth ? Unit : told});
    }
    if (ByWidth) {
      frame.pop_back();
    } else {
      frame.push_back(Unit);
    }
    return frame;
  }
};

OwnProtocol RandomProtocol(Dice& dice, bool byWidth) {
  OwnProtocol own;
  own.ByWidth = byWidth;
  own.Unit = dice.From(450, 700);
  own.Longer = own.Unit * dice.From(2, 3);
  own.LeaderMark = own.Unit * dice.From(8, 16);
  own.LeaderSpace = own.Unit * (byWidth ? 1 : dice.From(4, 8));
  return own;
}

/// Three frames of a user-defined protocol, with what SynthPress does to those of the known ones.
PulseTrain OwnPress(const OwnProtocol& own, const std::string& digits, const SynthOptions& remote) {
  constexpr int kGap = 25'000;
  Dice dice(remote.Seed);
  const auto noise = [&] {
    int sum = -6000;
    for (int term = 0; term < 12; ++term) sum += dice.From(0, 1000);
    return sum * remote.JitterUs / 1000;
  };
  PulseTrain press;
  double sent = 0;
  int recorded = 0;
  for (int frame = 0; frame < 3; ++frame) {
    std::vector<int> lengths = own.Frame(digits);
    if (frame < 2) lengths.push_back(kGap);
    for (const int length : lengths) {
      sent += length * (1 + remote.ClockError);
      const int late = press.size() % 2 == 0 ? remote.MarkExcessUs : 0;
      press.push_back(std::max(static_cast<int>(sent) + noise() + late - recorded, 1));
      recorded += press.back();
    }
  }
  press.push_back(remote.GapUs);
  return press;
}

/// A signal of the tables that put both analyses side by side.
struct Signal {
  const char* Name;
  std::string (*RandomCode)(Dice& dice);
  PulseTrain (*Press)(const std::string& code, const SynthOptions& remote, Dice& dice);
};

template <std::int16_t kKind>
PulseTrain KnownPress(const std::string& code, const SynthOptions& remote, Dice& /*dice*/) {
  return SynthPress(kKind, code, remote);
}

template <bool kByWidth>
PulseTrain RandomOwnPress(const std::string& code, const SynthOptions& remote, Dice& dice) {
  return OwnPress(RandomProtocol(dice, kByWidth), code, remote);
}

constexpr auto kSignals = std::to_array<Signal>({
    {"NEC", NecCode, KnownPress<kNec>},
    {"SONY 12", SonyCode, KnownPress<kSony>},
    {"SONY 15", [](Dice& dice) { return dice.Digits(15); }, KnownPress<kSony>},
    {"SONY 20", [](Dice& dice) { return dice.Digits(20); }, KnownPress<kSony>},
    {"RC5", Rc5Code, KnownPress<kRc5>},
    {"own distance", [](Dice& dice) { return dice.Digits(dice.From(13, 24)); }, RandomOwnPress<false>},
    {"own width", [](Dice& dice) { return dice.Digits(dice.From(12, 24)); }, RandomOwnPress<true>},
});

/// What is done to a press of a cell, and to its conditions.
struct Trial {
  Conditions With;
  PulseTrain Press;
  std::size_t Bytes = kMonitorCaptureBytes;
};
using Spoiler = std::function<void(Trial& trial, Dice& dice)>;

struct Tally {
  int Right = 0, Wrong = 0, Learned = 0;

  void Count(const MonitorReading& reading, const std::string& sent) {
    if (reading.Ended == Stage::Code) ++(reading.Digits == sent ? Right : Wrong);
    if (reading.Ended == Stage::Doubtful && reading.Digits == sent) ++Learned;
  }
};

constexpr std::array kBoth = {Analysis::First, Analysis::Second};

void PrintBoth(const Signal& signal, const Setter& set, const Spoiler& spoil) {
  Dice dice(1);
  std::array<Tally, 2> tallies;
  for (int count = 0; count < kCodesPerCell; ++count) {
    const std::string code = signal.RandomCode(dice);
    Trial trial;
    trial.With.Remote.Seed = dice.Seed();
    trial.With.Line.Shape = false;
    trial.With.Line.HoldMs = 0;
    set(trial.With, dice);
    trial.Press = signal.Press(code, trial.With.Remote, dice);
    spoil(trial, dice);
    std::string sent = code;
    if (std::string_view(signal.Name) == "RC5") sent[kToggleBitOffset] = '0';
    const std::string capture = CaptureOfPress(trial.Press, trial.Bytes, trial.With.Line);
    for (std::size_t i = 0; i < kBoth.size(); ++i) {
      SignalState state;
      state.SampleTime = trial.With.Line.SampleTime;
      tallies.at(i).Count(ReadCapture(capture, state, kBoth.at(i)), sent);
    }
  }
  std::printf(" %.1f / %d, **%.1f** / %d |", 100.0 * tallies[0].Right / kCodesPerCell, tallies[0].Wrong,
              100.0 * tallies[1].Right / kCodesPerCell, tallies[1].Wrong);
}

void PrintRowOfBoth(const std::string& label, const Setter& set, const Spoiler& spoil) {
  std::printf("| %s |", label.c_str());
  for (const Signal& signal : kSignals) PrintBoth(signal, set, spoil);
  std::printf("\n");
}

void PrintHeadOfBoth(const std::string& title, const std::string& column) {
  std::printf("\n### %s\n\n| %s |", title.c_str(), column.c_str());
  for (const Signal& signal : kSignals) std::printf(" %s |", signal.Name);
  std::printf("\n|---|---|---|---|---|---|---|---|\n");
}

const Spoiler kUnspoiled = [](Trial&, Dice&) {};

void PrintTableOfBoth(const std::string& title, const std::string& column, std::span<const int> values,
                      void (*set)(Conditions& conditions, int value)) {
  PrintHeadOfBoth(title, column);
  for (const int value : values) {
    PrintRowOfBoth(
        std::to_string(value), [&](Conditions& conditions, Dice&) { set(conditions, value); }, kUnspoiled);
  }
}

int LastRun(const PulseTrain& press) { return static_cast<int>(press.size()) - 2; }

void CutHead(Trial& trial, Dice& dice) {
  const int runs = dice.From(1, std::min(LastRun(trial.Press) / 2, 10));
  trial.Press.erase(trial.Press.begin(), trial.Press.begin() + 2 * runs);
}

void CutByBuffer(Trial& trial, Dice& dice) { trial.Bytes = static_cast<std::size_t>(dice.From(150, 500)); }

void LoseMarks(Trial& trial, Dice& dice, int count) {
  while (count-- > 0 && trial.Press.size() > 6) {
    const auto at = trial.Press.begin() + 2 * dice.From(1, LastRun(trial.Press) / 2 - 1);
    *(at - 1) += *at + *(at + 1);
    trial.Press.erase(at, at + 2);
  }
}

/// Splits a run by another one of 30 to 100 us.
void Interrupt(Trial& trial, Dice& dice, bool mark) {
  constexpr int kBeside = 60;
  const int place = 2 * dice.From(0, LastRun(trial.Press) / 2) + (mark ? 0 : 1);
  const int width = dice.From(30, 100);
  const int run = trial.Press[static_cast<std::size_t>(place)];
  if (run < width + 2 * kBeside) return;
  const int ahead = dice.From(kBeside, run - width - kBeside);
  trial.Press[static_cast<std::size_t>(place)] = ahead;
  trial.Press.insert(trial.Press.begin() + place + 1, {width, run - width - ahead});
}

void PrintWeakSignals() {
  const Setter real = LikeRealRemotes;
  PrintHeadOfBoth("Cuts and weak signals", "press");
  PrintRowOfBoth("whole", real, kUnspoiled);
  PrintRowOfBoth("head cut", real, CutHead);
  PrintRowOfBoth("cut by the buffer", real, CutByBuffer);
  PrintRowOfBoth("a mark missing", real, [](Trial& trial, Dice& dice) { LoseMarks(trial, dice, 1); });
  PrintRowOfBoth("three marks missing", real, [](Trial& trial, Dice& dice) { LoseMarks(trial, dice, 3); });
  PrintRowOfBoth("two short spikes", real, [](Trial& trial, Dice& dice) {
    for (int i = 0; i < 2; ++i) Interrupt(trial, dice, false);
  });
  PrintRowOfBoth("two short holes", real, [](Trial& trial, Dice& dice) {
    for (int i = 0; i < 2; ++i) Interrupt(trial, dice, true);
  });
}

/// One frame of pulse distance, with NEC's leader, and nothing else.
void PrintLoneFrame(const char* press, int digits, const Spoiler& spoil) {
  Dice dice(1);
  std::array<Tally, 2> tallies;
  for (int count = 0; count < kCodesPerCell; ++count) {
    const std::string code = dice.Digits(digits);
    Trial trial;
    LikeRealRemotes(trial.With, dice);
    trial.With.Remote.Repeats = 0;
    trial.With.Remote.Seed = dice.Seed();
    trial.With.Line.Shape = false;
    trial.With.Line.HoldMs = 0;
    trial.Press = SynthPress(kNec, code, trial.With.Remote);
    spoil(trial, dice);
    const std::string capture = CaptureOfPress(trial.Press, trial.Bytes, trial.With.Line);
    for (std::size_t i = 0; i < kBoth.size(); ++i) {
      SignalState state;
      state.SampleTime = trial.With.Line.SampleTime;
      tallies.at(i).Count(ReadCapture(capture, state, kBoth.at(i)), code);
    }
  }
  std::printf("| %d digits, %s | %.1f / %d | %.1f / %d | %.1f |\n", digits, press,
              100.0 * tallies[0].Right / kCodesPerCell, tallies[0].Wrong,
              100.0 * tallies[1].Right / kCodesPerCell, tallies[1].Wrong,
              100.0 * (tallies[1].Right + tallies[1].Learned) / kCodesPerCell);
}

void PrintLoneFrames() {
  std::printf(
      "\n### One frame alone\n\n| frame | first analysis | second look | of learned commands |\n"
      "|---|---|---|---|\n");
  for (const int digits : {13, 16, 22, 24, 28, 32, 33, 35, 36, 40, 42, 48}) {
    PrintLoneFrame("whole", digits, kUnspoiled);
  }
  for (const int digits : {24, 32, 36, 40, 48}) {
    PrintLoneFrame("a mark missing", digits, [](Trial& trial, Dice& dice) { LoseMarks(trial, dice, 1); });
  }
}

}  // namespace

int main() {
  PrintHead("Receivers and remotes as they are", "sample time, us");
  for (const int sampleTime : {50, 55, 60}) {
    PrintRow(std::to_string(sampleTime), [&](Conditions& conditions, Dice& dice) {
      LikeRealRemotes(conditions, dice);
      conditions.Line.SampleTime = sampleTime;
    });
  }
  constexpr std::array kJitters = {0, 10, 20, 30, 50, 70, 100};
  PrintTable("By jitter", "jitter, us", kJitters,
             [](Conditions& conditions, int value) { conditions.Remote.JitterUs = value; });
  constexpr std::array kExcesses = {-100, -50, 0, 50, 100, 150, 200};
  PrintTable("By mark excess", "mark excess, us", kExcesses,
             [](Conditions& conditions, int value) { conditions.Remote.MarkExcessUs = value; });
  constexpr std::array kSampleTimes = {40, 45, 50, 55, 60, 65, 70, 75};
  PrintTable("By sample time", "sample time, us", kSampleTimes,
             [](Conditions& conditions, int value) { conditions.Line.SampleTime = value; });

  std::printf("\n## Both analyses side by side\n");
  PrintHeadOfBoth("Receivers and remotes as they are", "sample time, us");
  for (const int sampleTime : kSampleTimes) {
    PrintRowOfBoth(
        std::to_string(sampleTime),
        [&](Conditions& conditions, Dice& dice) {
          LikeRealRemotes(conditions, dice);
          conditions.Line.SampleTime = sampleTime;
        },
        kUnspoiled);
  }
  PrintTableOfBoth("By jitter", "jitter, us", kJitters,
                   [](Conditions& conditions, int value) { conditions.Remote.JitterUs = value; });
  constexpr std::array kWideExcesses = {-100, -50, 0, 50, 100, 150, 200, 250, 300};
  PrintTableOfBoth("By mark excess", "mark excess, us", kWideExcesses,
                   [](Conditions& conditions, int value) { conditions.Remote.MarkExcessUs = value; });
  PrintWeakSignals();
  PrintLoneFrames();
  bench::PrintDamage();
  bench::PrintNoise();
  bench::PrintRawKeys();
  return 0;
}
