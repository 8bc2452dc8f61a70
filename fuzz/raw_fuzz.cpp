#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "config/raw_file.h"
#include "config/raw_lookup.h"
#include "signal/raw/raw_index.h"
#include "signal/raw/raw_send.h"

namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

/// Takes signals off bytes: a number of lengths, then two bytes each.
class Signals {
 public:
  Signals(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  bool Empty() const { return size_ == 0; }
  std::vector<int> Next() {
    std::vector<int> lengths;
    for (int count = 2 * Byte() + 1; count > 0 && !Empty(); --count) {
      const int high = Byte();
      lengths.push_back(1 + (high << 8) + Byte());
    }
    return lengths;
  }

 private:
  int Byte() {
    if (Empty()) return 0;
    --size_;
    return *data_++;
  }
  const std::uint8_t* data_;
  std::size_t size_;
};

/// What was written is read again, and any text of a user's is kept.
void CheckFile(const keplo::RawSignal& signal) {
  const keplo::RawEntries back = keplo::ReadRawText(keplo::MakeRawEntry(signal).Text);
  Check(back.size() == 1 && back.begin()->second.Signal.Forms == signal.Forms);
}

void CheckText(std::string_view text) {
  const std::string once = keplo::WriteRawText("NEC", keplo::ReadRawText(text));
  Check(keplo::WriteRawText("NEC", keplo::ReadRawText(once)) == once);
}

/// Learns what the signals have in common and finds the next ones among what was learned.
void LearnAndFind(Signals signals) {
  keplo::RawLesson lesson;
  keplo::RawIndex index;
  keplo::SignalState state;
  std::string known;
  while (!signals.Empty()) {
    state.Samples.Read(keplo::CaptureOfLengths(signals.Next()));
    const keplo::HeardLengths heard = keplo::HeardIn(state);
    const keplo::RawMatch match = index.Find(heard);
    Check(match.Digits.empty() || known.find(match.Digits) != std::string::npos);
    if (!lesson.Hear(heard)) continue;
    const keplo::RawSignal signal = keplo::MakeRawSignal(known, {lesson.Last()});
    CheckFile(signal);
    index.Add(signal);
    known += "A=G" + signal.Digits + "\r\n";
  }
}

}  // namespace

/// Arbitrary bytes as presses of raw commands, and as the text of their file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  CheckText({reinterpret_cast<const char*>(data), size});
  LearnAndFind(Signals(data, size));
  return 0;
}
