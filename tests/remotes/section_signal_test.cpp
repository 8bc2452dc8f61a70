#include "remotes/section_signal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "config/config_builder.h"
#include "line/press_capture.h"
#include "remote_builder.h"
#include "remotes/heard_code.h"
#include "remotes/stored_remote.h"
#include "signal/monitored_press.h"

namespace keplo::tests {
namespace {

struct FamilyRow {
  const char* Family;
  int Digits;
  const char* Repeat;  // as GPROTO REPEAT GREPEAT
};

/// The protocols that a living room has.
const std::vector<FamilyRow> kRows = {
    {"NEC", 32, "0 0 1"},     {"NEC2", 32, "0 1 1"}, {"NEC42", 42, "0 0 1"}, {"PIONEER", 32, "0 1 1"},
    {"SAMSUNG", 32, "0 1 1"}, {"SONY", 12, "1 1 1"}, {"RC5", 14, "2 1 1"},   {"KASEIKYO", 48, "0 1 1"},
    {"JVC", 16, "0 1 0"},     {"AIWA", 42, "0 0 1"}, {"RCA", 24, "0 1 1"},   {"MITSUBISHI", 16, "0 1 1"}};

std::string CodeOf(const FamilyRow& row, unsigned number) {
  std::string digits = Digits(number, row.Digits);
  if (std::string(row.Family) == "RC5") digits[2] = '0';
  if (std::string(row.Family) == "RCA") {
    for (std::size_t i = 0; i < 12; ++i) digits[i + 12] = digits[i] == '1' ? '0' : '1';
  }
  return digits;
}

/// Frames after a mark as short as theirs and a rest.
CodedSignal Dish(unsigned number, int gap) {
  Coding code{LineCode::Distance, 0, {400, 6100}, {400, 1700}, {400, 2800}, 400};
  code.Unit = UnitOf(code);
  return {code, {RepeatKind::Frame, gap, false, {}}, Digits(number, 16), {}};
}

SectionSignal SectionFor(const CodedSignal& signal, std::optional<int> carrier) {
  const auto section = SectionOf(signal);
  EXPECT_TRUE(section.has_value());
  SectionGroup group(section.value_or(SectionSignal()));
  group.Add(signal, carrier);
  return group.Section();
}

/// Each mark and space within half a slot, and the gap within 5 %.
void ExpectSends(const SectionSignal& section, const CodedSignal& signal) {
  const PulseTrain sent = SentPress(section, signal.Digits), wanted = PressLengths(signal, 1);
  ASSERT_GE(sent.size(), wanted.size());
  const std::size_t gap = FrameLengths(signal).size();
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    const double most = i == gap ? 0.05 * wanted[i] : section.Params.SENDPLS / 2.0 + 1;
    EXPECT_LE(std::abs(sent[i] - wanted[i]), most) << i << ": " << sent[i] << " for " << wanted[i];
  }
}

TEST(SectionSignal, SendsWhatTheFileSays) {
  for (const FamilyRow& row : kRows) {
    SCOPED_TRACE(row.Family);
    const RemoteKey key = Key("A", CodeOf(row, 7), row.Family);
    const SectionSignal section = SectionFor(*key.Coded, key.Carrier);
    const auto sign = [](int number) { return std::to_string(number > 1 ? 1 : number); };
    EXPECT_EQ(std::to_string(section.ProtoKind) + " " + sign(section.Params.REPEAT) + " " +
                  sign(section.Params.GREPEAT),
              row.Repeat);
    ExpectSends(section, *key.Coded);
  }
  // A gap has 16 slots at least, so that a short one needs shorter slots where the closing mark allows them.
  const CodedSignal quick = Dish(7, 6200);
  ExpectSends(SectionFor(quick, {}), quick);
  const Coding width{LineCode::Width, 400, {3200, 1600}, {400, 400}, {1200, 400}, 0};
  const CodedSignal wide{width, quick.Again, Digits(7, 16), {}};
  ExpectSends(SectionFor(wide, {}), wide);
  CodedSignal tooQuick = *Key("A", Digits(7)).Coded;
  tooQuick.Again = quick.Again;
  EXPECT_EQ(SectionFor(tooQuick, {}).Params.REPEAT, 16);
  SectionGroup group(*SectionOf(tooQuick));
  group.Add(tooQuick, {});
  EXPECT_EQ(group.LengthenedSilence(tooQuick), 16 * group.Section().Params.SENDPLS);
  EXPECT_EQ(group.LengthenedSilence(*Key("A", Digits(7)).Coded), 0);
}

TEST(SectionSignal, SendsCodesOfOnePeriodInOneSection) {
  std::vector<RemoteKey> keys;
  for (const int digits : {12, 15, 20}) {
    for (unsigned number = 1; number <= 5; ++number) keys.push_back(Key("A", Digits(number, digits), "SONY"));
  }
  SectionGroup group(*SectionOf(*keys.front().Coded));
  for (const RemoteKey& key : keys) {
    ASSERT_TRUE(group.Takes(*key.Coded, key.Carrier));
    group.Add(*key.Coded, key.Carrier);
  }
  for (const RemoteKey& key : keys) {
    ExpectSends(group.Section(), *key.Coded);
    const CodedSignal again = *KeyOfCode(group.Section(), key.Coded->Digits).Coded;
    EXPECT_TRUE(again.Again.FromStart) << "in an export too";
    EXPECT_NEAR(again.Again.Gap, 45'000, 600);
  }
  // Another period makes another section, and so does a gap that is shorter than the slots have it.
  for (const int period : {40'000, 40'600 - 20'000}) {
    CodedSignal other = *keys.front().Coded;
    other.Again.Gap = period;
    EXPECT_FALSE(group.Takes(other, {})) << period;
  }
}

TEST(SectionSignal, IsHeardAgainAsTheSameDigits) {
  std::vector<CodedSignal> signals;
  for (unsigned number = 1; number <= 20; ++number) {
    for (const FamilyRow& row : kRows) signals.push_back(*Key("A", CodeOf(row, number), row.Family).Coded);
    for (const int gap : {6200, 40'000}) signals.push_back(Dish(number, gap));
  }
  for (const CodedSignal& signal : signals) {
    const SectionSignal section = SectionFor(signal, {});
    EXPECT_TRUE(IsHeard(section, signal.Digits));
    PulseTrain press = SentPress(section, signal.Digits);
    // A receiver lengthens marks.
    for (std::size_t i = 0; i < press.size(); ++i) press[i] += i % 2 == 0 ? 60 : -60;
    SignalState state;
    const MonitorReading heard = ReadCapture(CaptureOfPress(press, 510, {}), state, Analysis::Second);
    EXPECT_EQ(heard.Digits, signal.Digits) << signal.Code.Unit;
  }
  const CodedSignal few = {Key("A", "").Coded->Code, {}, "101010101010", {}};
  EXPECT_FALSE(IsHeard(SectionFor(few, {}), few.Digits)) << "of pulse distance it takes no 12 digits";
}

TEST(SectionSignal, SaysNothingThatTwoPatternsCannot) {
  CodedSignal odd = *Key("A", Digits(1)).Coded;
  odd.Code.Tail = 0;
  EXPECT_FALSE(SectionOf(odd).has_value()) << "a section closes pulse distance with a mark";
  odd = *Key("A", Digits(1)).Coded;
  odd.Code.One.Space = odd.Code.Zero.Space + 100;
  EXPECT_FALSE(SectionOf(odd).has_value());
}

TEST(SectionSignal, ComesBackFromTheStore) {
  for (const FamilyRow& row : kRows) {
    SCOPED_TRACE(row.Family);
    const auto files =
        File("Mine", {Key("ON", CodeOf(row, 1), row.Family), Key("OFF", CodeOf(row, 2), row.Family)});
    const std::string text = PlanImport(Config(""), files, {}).Text;
    const Remote remote = RemoteOfSection(text, "Mine", [](std::string_view name) { return name == "OFF"; });
    ASSERT_EQ(remote.Keys.size(), 1U);
    const RemoteKey &key = remote.Keys.front(), &from = files.front().Remotes.front().Keys[1];
    ASSERT_TRUE(key.Coded.has_value());
    EXPECT_EQ(key.Coded->Digits, from.Coded->Digits);
    EXPECT_EQ(NameOf(key.Coded->Again.Kind), NameOf(from.Coded->Again.Kind));
    EXPECT_EQ(key.Carrier, from.Carrier);
    EXPECT_NEAR(key.Coded->Again.Gap, SilenceAfter(*from.Coded), 0.05 * SilenceAfter(*from.Coded));
    // What was exported goes in again as what it was.
    const std::string again = PlanImport(Config(""), {{"b", {remote}}}, {}).Text;
    EXPECT_EQ(RemoteOfSection(again, "Mine", {}).Keys.front().Coded, key.Coded);
  }
}

}  // namespace
}  // namespace keplo::tests
