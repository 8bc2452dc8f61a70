#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "signal/rc6.h"

namespace keplo::tests {

/// A key of NEC.
inline const std::string kNecDigits = "00000000111111110110100010010111";

/// Sample string of runs that alternate, ones first.
inline std::string Runs(const std::vector<int>& runs) {
  std::string samples;
  char sample = '1';
  for (const int run : runs) {
    samples.append(static_cast<std::size_t>(run), sample);
    sample = sample == '1' ? '0' : '1';
  }
  return samples;
}

/// Packs a sample string into capture bytes; the last byte is filled with silence.
inline std::string Bytes(std::string samples) {
  samples.append((8 - samples.size() % 8) % 8, '0');
  std::string bytes;
  for (std::size_t i = 0; i < samples.size(); i += 8) {
    unsigned code = 0;
    for (std::size_t bit = 0; bit < 8; ++bit) code = code * 2 + (samples[i + bit] == '1' ? 1U : 0U);
    bytes += static_cast<char>(code);
  }
  return bytes;
}

/// A capture of the given length with the samples at its head and silence after them.
inline std::string Padded(const std::string& bytes, std::size_t length = 510) {
  std::string padded(length, '\0');
  std::copy_n(bytes.begin(), std::min(bytes.size(), length), padded.begin());
  return padded;
}

/// What a line hands over for a press of these runs.
inline std::string Capture(const std::vector<int>& runs, std::size_t length = 510) {
  return Padded(Bytes(Runs(runs)), length);
}

/// A press, a space after it, and another one.
inline std::vector<int> Then(std::vector<int> press, int gap, const std::vector<int>& more) {
  press.push_back(gap);
  press.insert(press.end(), more.begin(), more.end());
  return press;
}

/// Pulse distance press: leader, one mark and space a digit, closing mark; a unit is 10 and 11 samples in
/// turn, as on a real line.
inline std::vector<int> NecRuns(const std::string& digits) {
  std::vector<int> runs = {160, 80};
  int jitter = 0;
  for (const char digit : digits) {
    runs.push_back(10 + jitter);
    runs.push_back((digit == '1' ? 30 : 10) + jitter);
    jitter = 1 - jitter;
  }
  runs.push_back(10);
  return runs;
}

/// Pulse width press: leader, then a space and a mark a digit.
inline std::vector<int> SonyRuns(const std::string& digits) {
  std::vector<int> runs = {45};
  int jitter = 0;
  for (const char digit : digits) {
    runs.push_back(10 + jitter);
    runs.push_back((digit == '1' ? 21 : 10) + jitter);
    jitter = 1 - jitter;
  }
  return runs;
}

/// Biphase press: the frame twice with a gap of 1,600 samples, since only a frame after a gap is read.
inline std::vector<int> Rc5Runs(const std::string& digits, int frames = 2) {
  std::string halves;
  for (const char digit : digits) halves += digit == '1' ? "01" : "10";
  std::vector<int> frame;
  for (std::size_t i = halves.find('1'); i < halves.size();) {
    const std::size_t end = halves.find_first_not_of(halves[i], i);
    const std::size_t run = (end == std::string::npos ? halves.size() : end) - i;
    frame.push_back(static_cast<int>(run) * 16 + static_cast<int>(frame.size() % 2));
    i += run;
  }
  if (frame.size() % 2 == 0) frame.pop_back();  // a closing space runs into the gap
  std::vector<int> runs = frame;
  while (--frames > 0) runs = Then(runs, 1600, frame);
  return runs;
}

/// As a receiver hands a press on that makes every mark longer, and every space shorter.
inline std::vector<int> WithExcess(std::vector<int> press, int excess) {
  for (std::size_t i = 0; i < press.size(); ++i) press[i] += i % 2 == 0 ? excess : -excess;
  return press;
}

/// Pulse distance press of any leader and lengths.
inline std::vector<int> DistanceRuns(const std::vector<int>& leader, int mark, int zero, int one,
                                     const std::string& digits) {
  std::vector<int> runs = leader;
  for (const char digit : digits) runs.insert(runs.end(), {mark, digit == '1' ? one : zero});
  runs.push_back(mark);
  return runs;
}

/// Pulse width press of any leader and lengths.
inline std::vector<int> WidthRuns(const std::vector<int>& leader, int space, int zero, int one,
                                  const std::string& digits) {
  std::vector<int> runs = leader;
  for (const char digit : digits) runs.insert(runs.end(), {digit == '1' ? one : zero, space});
  runs.pop_back();
  return runs;
}

/// RC6; its base time is eight samples.
inline std::vector<int> Rc6Runs(const std::string& code, bool toggle, int unit = 8) {
  const std::string halves = std::string(kRc6Leader) + Rc6Halves(code, toggle, "10", "01");
  std::vector<int> runs;
  for (std::size_t i = 0; i <= halves.rfind('1'); ++i) {
    if (i == 0 || halves[i] != halves[i - 1]) runs.push_back(0);
    runs.back() += unit;
  }
  return runs;
}

}  // namespace keplo::tests
