#include "signal/runs.h"

#include <gtest/gtest.h>

#include <map>
#include <numeric>
#include <random>

#include "signal/capture_trim.h"
#include "signal/frame_times.h"
#include "signal/held_signs.h"
#include "signal/sample_bits.h"
#include "signal/second_look/smooth_samples.h"
#include "signal_builder.h"

namespace keplo {
namespace {

using RunVector = std::vector<int>;

RunVector RunsOf(const SampleWords& samples) {
  RunReader reader;
  const RunSpan runs = reader.Read(samples);
  return {runs.begin(), runs.end()};
}

SampleWords WordsOf(const std::string& capture) {
  SampleWords samples;
  samples.Read(capture);
  return samples;
}

/// The same, character by character.
RunVector RunsByHand(const std::string& bits) {
  RunVector runs;
  for (std::size_t begin = 0; begin < bits.size();) {
    if (runs.empty() && bits[begin] == '0') runs.push_back(0);
    const std::size_t end = std::min(bits.find_first_not_of(bits[begin], begin), bits.size());
    runs.push_back(static_cast<int>(end - begin));
    begin = end;
  }
  return runs;
}

std::string SmoothedByHand(const std::string& bits) {
  std::string smooth;
  char level = '0';
  for (const char sample : bits) {
    const std::size_t begin = smooth.size();
    const std::size_t end = std::min(bits.find_first_not_of(sample, begin), bits.size());
    if (begin == 0 || bits[begin - 1] != sample) {
      if (end - begin > robust::kInterference) level = sample;
    }
    smooth += level;
  }
  return smooth;
}

TEST(Runs, AreThoseOfTheSamples) {
  std::mt19937 dice(1);
  const std::string mark(64, '\xFF');
  std::vector<std::string> captures = {"",
                                       "\x01",
                                       "\x7F",
                                       "\xFE\xFF",
                                       mark,
                                       std::string(64, '\0'),
                                       std::string(7, '\0') + mark,
                                       mark.substr(0, 9) + std::string(3, '\0')};
  for (int round = 0; round < 300; ++round) {
    std::string samples;
    const unsigned longest = 1 + dice() % 80;
    while (samples.size() < dice() % 700) samples.append(1 + dice() % longest, dice() % 2 == 0 ? '0' : '1');
    captures.push_back(tests::Bytes(samples));
  }
  for (const std::string& capture : captures) {
    const std::string bits = SamplesToBits(capture);
    const SampleWords samples = WordsOf(capture);
    EXPECT_EQ(RunsOf(samples), RunsByHand(bits)) << bits;
    SampleWords smooth;
    robust::SmoothSamples(samples, smooth);
    EXPECT_EQ(RunsOf(smooth), RunsByHand(SmoothedByHand(bits))) << bits;
    EXPECT_EQ(robust::HasInterference(RunsOf(samples)), SmoothedByHand(bits) != bits) << bits;
  }
}

TEST(HeldSigns, AreDittosHoweverSoonTheSamplesEndBehindThem) {
  for (const RunVector& runs :
       {RunVector{160, 40, 10}, {160, 40, 10, 30}, {160, 40, 10, 1700}, {160, 40, 10, 1700, 160, 40, 10, 30}})
    for (const int leader : {0, 125, 160})
      EXPECT_TRUE(AreDittos(runs, 10, leader, kNominalSampleTime)) << ::testing::PrintToString(runs);
}

/// Frames of 20 ms, or signs, at these times.
TEST(FrameTimes, TellTwoTapsFromAHeldKey) {
  const struct {
    const char* Name;
    std::vector<std::pair<char, int>> Pieces;  // f a frame, o another, s a sign; begin, samples
    bool BySigns;
    std::size_t Second;
    int Heard = 0;
    double SampleTime = kNominalSampleTime;
  } rows[] = {
      {"its usual time", {{'f', 0}, {'f', 2000}}, false, 0},
      {"later", {{'f', 0}, {'f', 2700}}, false, 1},
      {"later, another frame", {{'f', 0}, {'o', 2700}}, false, 0},
      {"behind a sign", {{'f', 0}, {'s', 2000}, {'f', 3500}}, true, 2},
      {"... of a key that sends none", {{'f', 0}, {'s', 1000}, {'f', 2500}}, false, 0},
      {"later than before", {{'f', 0}, {'f', 800}, {'f', 2200}}, false, 2},
      {"... by one that was lost", {{'f', 0}, {'f', 900}, {'f', 2700}}, false, 0},
      {"... though few keys send so seldom", {{'f', 0}, {'f', 1600}, {'f', 4800}}, false, 0},
      {"... as it was held before", {{'f', 0}, {'f', 3200}}, false, 0, 1600},
      {"frames in turns", {{'f', 0}, {'o', 1500}, {'f', 3000}}, false, 0},
      {"... and again", {{'f', 0}, {'o', 1000}, {'f', 3600}}, false, 2},
      {"cut in a mark", {{'f', 0}, {'c', 2700}}, false, 1},
      {"cut in a space", {{'f', 0}, {'e', 2700}}, false, 1},
      {"cut, of this key perhaps", {{'f', 0}, {'b', 2700}}, false, 0},
      {"cut in its usual time", {{'f', 0}, {'c', 2000}}, false, 0},
      {"a leader's space of many short samples", {{'n', 0}, {'n', 3300}}, false, 1, 0, 40},
  };
  const std::map<char, RunVector> known = {{'f', RunVector(13, 28)},
                                           {'o', RunVector(15, 24)},
                                           {'s', {160, 40, 10}},
                                           {'c', RunVector(11, 20)},
                                           {'e', RunVector(10, 20)},
                                           {'b', RunVector(11, 28)},
                                           {'n', {225, 112, 14, 14, 14, 14, 14, 14, 14}}};
  for (const auto& row : rows) {
    RunVector runs;
    for (const auto& [what, begin] : row.Pieces) {
      if (!runs.empty()) runs.push_back(begin - std::accumulate(runs.begin(), runs.end(), 0));
      runs.insert(runs.end(), known.at(what).begin(), known.at(what).end());
    }
    if (row.Pieces.back().first < 'b' || row.Pieces.back().first > 'e') runs.push_back(300);
    const std::vector<TimedPiece> pieces = PiecesIn(runs, row.SampleTime);
    EXPECT_EQ(FindSecondTap(pieces, {2500, row.BySigns, row.Heard}, row.SampleTime), row.Second) << row.Name;
  }
}

TEST(SignalBytes, EndWithTheLastSampleOfAMark) {
  for (const std::size_t length : {0U, 1U, 7U, 8U, 9U, 17U, 510U}) {
    for (const std::size_t silence : {0U, 1U, 7U, 8U, 25U}) {
      EXPECT_EQ(SignalBytes(std::string(length, '\x01') + std::string(silence, '\0')), length) << silence;
    }
  }
}

}  // namespace
}  // namespace keplo
