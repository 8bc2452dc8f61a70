#pragma once

#include <sstream>
#include <string>

#include "formats/pulse_text.h"
#include "line/device_line.h"
#include "signal/sample_bits.h"
#include "signal/zone_link.h"

namespace keplo::tests {

inline std::string Joined(std::span<const int> lengths) {
  std::string text;
  for (const int length : lengths) text += (text.empty() ? "" : " ") + std::to_string(length);
  return text;
}

/// What is played: lengths, and a character for each, that which stands in front of it or a blank. One alone
/// may stand at the end.
struct Played {
  PulseTrain Lengths;
  std::string Marks;
};

inline Played ReadPlayed(const std::string& text) {
  Played played;
  std::istringstream words(text);
  for (std::string word; std::getline(words, word, ',');) {
    const bool isMarked = std::isdigit(static_cast<unsigned char>(word[0])) == 0;
    played.Marks += isMarked ? word[0] : ' ';
    if (word.size() > 1 || !isMarked) played.Lengths.push_back(std::stoi(word.substr(isMarked ? 1 : 0)));
  }
  return played;
}

/// The lengths of the runs of samples in a capture.
inline std::vector<int> RunsOf(std::string_view capture) {
  const std::string samples = SamplesToBits(capture);
  std::vector<int> runs;
  for (std::size_t at = 0; at < samples.size(); at += static_cast<std::size_t>(runs.back())) {
    const std::size_t end = std::min(samples.find_first_not_of(samples[at], at), samples.size());
    runs.push_back(static_cast<int>(end - at));
  }
  return runs;
}

/// What a buffer got: the lengths that the line tells, those of the samples, and how many bytes.
inline std::string Written(const Win32Ser& line, const std::string& buffer, std::chrono::nanoseconds start) {
  const std::size_t bytes = buffer.find_last_not_of('\xAA') + 1;
  std::string text = "[" + Joined(line.ToldLengths()) + "] " +
                     Joined(RunsOf(std::string_view(buffer).substr(0, bytes))) + "/" + std::to_string(bytes);
  const SignalOrigin* const origin = line.Origin();
  const auto since = [&](std::chrono::microseconds time) {
    return std::to_string((time - std::chrono::duration_cast<std::chrono::microseconds>(start)).count());
  };
  return origin == nullptr ? text : text + " " + since(origin->Begin) + ".." + since(origin->End);
}

/// Takes the steps of a script, and writes down what came of each: pLENGTHS a press begins, wMICROSECONDS a
/// wait, uMICROSECONDS a pause, d the level, mBYTES and rBYTES a capture of the monitor and a recording, with
/// the time when it is done, f forgets, q milliseconds without ticks, l losses, sMICROSECONDS slots are sent,
/// zNUMBER a zone is selected, z asked for, gMICROSECONDS the device goes after them, g it is back.
template <typename Device, typename Line, typename Play>
std::string Script(Device& device, Line& line, const std::string& script, const Play& play) {
  const auto start = device.Now();
  std::istringstream words(script);
  std::string text;
  for (std::string word; words >> word;) {
    const std::string rest = word.substr(1);
    const int number = rest.empty() || word[0] == 'p' ? 0 : std::stoi(rest);
    const std::chrono::microseconds time(number);
    std::string buffer(word[0] == 'm' || word[0] == 'r' ? number : 0, '\xAA');
    if (word[0] == 'p') play(rest);
    if (word[0] == 'w') device.SleepUntil(device.Now() + time);
    if (word[0] == 'u') line.uDelay(number);
    if (word[0] == 'd') text += std::to_string(line.DCD()) + " ";
    if (word[0] == 'z')
      text += "zone " +
              std::to_string(rest.empty()                                        ? QueryZone(line)
                             : SendZone(line, static_cast<std::int16_t>(number)) ? 1
                                                                                 : 0) +
              " ";
    if (word[0] == 'm') line.IRMonitor(buffer, 10);
    if (word[0] == 'r') text += std::to_string(line.IRRecord(buffer, 10, number)) + " ";
    if (word[0] == 's') line.IRSend("\xF1", number, 0);
    if (!buffer.empty()) {
      const auto taken = std::chrono::round<std::chrono::microseconds>(device.Now() - start);
      text += Written(line, buffer, start) + " @" + std::to_string(taken.count()) + "; ";
    }
    if constexpr (std::is_base_of_v<DeviceLine, Line>) {
      if (word[0] == 's') text += line.Sent() ? "sent " : "not sent ";
      if (word[0] == 'q') text += "rest " + std::to_string(line.MayRest().count()) + " ";
      if (word[0] == 'f') line.Forget();
      if (word[0] == 'g')
        device.GoneAt = rest.empty() ? std::chrono::nanoseconds::max() : device.Now() + time;
      const LineLosses losses = line.Losses();
      for (const auto count :
           {losses.Samples, losses.FilledSamples, losses.LateSamples, losses.MissedEdges, losses.Overflows})
        text += word[0] == 'l' ? std::to_string(count) + " " : "";
    }
  }
  return text;
}

}  // namespace keplo::tests
