#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "signal/signal_origin.h"
#include "signal/win32_ser.h"

namespace keplo::tests {

/// A line that writes down every call in order as readable text and answers from a script.
class FakeLine : public Win32Ser {
 public:
  std::vector<std::string> Calls;
  bool LogDcd = false;

  std::deque<std::int32_t> OpenResults;          // 1 when none is left
  std::function<bool(std::int32_t port)> Opens;  // in place of them
  std::deque<std::string> Captures;  // one for each capture call; the line rests when none is left
  std::deque<char> Answers;          // characters of the zone hardware; NUL for a time-out
  std::int32_t ReadResult = 1;       // of a character that came
  std::function<std::int16_t(char)> Zones = [](char) -> std::int16_t { return 0; };
  std::int32_t Rest = 1;
  std::optional<SignalOrigin> Heard;  // when, of a line that knows it
  std::function<void()> WhileRecording = [] {}, WhileSending = [] {};
  std::string Sent;  // bytes of the last transmission

  std::int32_t OpenCom(std::int32_t port) override {
    Note("OpenCom", port);
    return Opens ? (Opens(port) ? 1 : 0) : Take(OpenResults, 1);
  }
  void CloseCom() override { Calls.emplace_back("CloseCom"); }
  void SetMode(std::int32_t mode) override { Note("SetMode", mode); }
  void DTR(std::int32_t state) override { Note("DTR", state); }
  void RTS(std::int32_t state) override { Note("RTS", state); }
  void TXD(std::int32_t state) override { Note("TXD", state); }
  std::int32_t DCD() override {
    if (LogDcd) Calls.emplace_back("DCD");
    return Captures.empty() ? Rest : 1 - Rest;
  }
  void IRMonitor(std::span<char> buffer, std::int32_t delay) override { Capture("IRMonitor", buffer, delay); }
  const SignalOrigin* Origin() const override { return Heard ? &*Heard : nullptr; }
  void IRMonitorN(std::span<char> buffer, std::int32_t delay) override {
    Capture("IRMonitorN", buffer, delay);
  }
  std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override {
    return Record("IRRecord", buffer, delay, limit);
  }
  std::int32_t IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override {
    return Record("IRRecordN", buffer, delay, limit);
  }
  void IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) override {
    Sent = bytes;
    WhileSending();
    Calls.push_back("IRSend " + std::to_string(bytes.size()) + " pulse " + std::to_string(pulse) +
                    " interface " + std::to_string(interfaceType));
  }
  std::int32_t Carrier = 0;  // Hz, of what was sent last
  void SetCarrier(std::int32_t hertz) override { Carrier = hertz; }
  void SendChr(char character) override { Note("SendChr", character); }
  std::int32_t ReadChr(char& character) override {
    Calls.emplace_back("ReadChr");
    const char answer = Take(Answers, '\0');
    if (answer == '\0') return 0;
    character = answer;
    return ReadResult;
  }
  std::int16_t CheckZone(char& character) override {
    Note("CheckZone", character);
    return Zones(character);
  }
  void uDelay(std::int32_t microseconds) override { Note("uDelay", microseconds); }
  void SpeakBeep(std::int32_t frequency, std::int32_t duration) override {
    Calls.push_back("SpeakBeep " + std::to_string(frequency) + " " + std::to_string(duration));
  }

  std::vector<std::string> TakeCalls() { return std::exchange(Calls, {}); }

 private:
  template <typename T>
  static T Take(std::deque<T>& queue, T otherwise) {
    if (queue.empty()) return otherwise;
    T first = queue.front();
    queue.pop_front();
    return first;
  }

  void Note(const std::string& operation, std::int32_t value) {
    Calls.push_back(operation + " " + std::to_string(value));
  }

  void Capture(const std::string& operation, std::span<char> buffer, std::int32_t delay) {
    Calls.push_back(operation + " " + std::to_string(buffer.size()) + " delay " + std::to_string(delay));
    const std::string bytes = Take(Captures, std::string());
    std::copy_n(bytes.begin(), std::min(bytes.size(), buffer.size()), buffer.begin());
  }

  std::int32_t Record(const std::string& operation, std::span<char> buffer, std::int32_t delay,
                      std::int32_t limit) {
    WhileRecording();
    const bool signal = !Captures.empty();
    Capture(operation + " limit " + std::to_string(limit), buffer, delay);
    return signal ? 1 : 0;
  }
};

}  // namespace keplo::tests
