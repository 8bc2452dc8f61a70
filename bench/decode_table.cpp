// Prints how many key presses the monitor reads, as the markdown tables of docs/decode-rates.md.
#include <array>
#include <cstdio>
#include <functional>
#include <random>
#include <span>
#include <string>

#include "line/press_capture.h"
#include "line/synth.h"
#include "signal/decode.h"
#include "signal/monitor_road.h"
#include "signal/timing.h"

namespace {

using namespace keplo;

constexpr int kCodesPerCell = 1000;

/// Numbers that are the same on every machine, which those of the library's distributions are not.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : generator_(seed) {}

  int From(int least, int most) {
    return least + static_cast<int>(generator_() % static_cast<unsigned>(most - least + 1));
  }
  std::uint32_t Seed() { return static_cast<std::uint32_t>(generator_()); }

 private:
  std::mt19937 generator_;
};

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
  return 0;
}
