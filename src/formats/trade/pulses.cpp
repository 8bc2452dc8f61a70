#include <algorithm>
#include <array>
#include <cstdio>

#include "formats/trade/reading.h"
#include "formats/trade/scancode.h"
#include "formats/trade/trade_formats.h"
#include "formats/train_writer.h"

namespace keplo::trade {

namespace {

constexpr std::string_view kExpected =
    "\"pulse\", \"space\", \"timeout\", \"carrier\", \"scancode\" or a length such as +560";

constexpr std::array<std::string_view, 5> kWords = {"pulse", "space", "timeout", "carrier", "scancode"};

constexpr std::string_view kCarrierComment = "# carrier ";  // in a line of its own

std::string_view WithoutComment(std::string_view line) {
  return line.substr(0, std::min(line.find('#'), line.find("//")));
}

/// Lines of marks and spaces, and lines of signed lengths that are a key each.
class PulseReader {
 public:
  PulseReader(const std::string& path, RemoteFile& file) : reading_(path, file), file_(file) {}

  void Read(std::string_view text) {
    Lines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
      line_ = lines.Number();
      if (line.starts_with(kCarrierComment) && NumberOf(line.substr(kCarrierComment.size()))) {
        ReadCarrier(line.substr(kCarrierComment.size()));
      } else {
        ReadLine(WithoutComment(line));
      }
    }
    EndKey();
    // Programs that receive write it after the press that it is of.
    if (carrier_ && !carriersDiffer_) SetCarrierOfAll();
    // None behind the last press: they stood ahead of theirs, but for the first one that had none.
    if (carriersDiffer_ && carriersFollow_ && !lastHasOwn_) SetCarriersAhead();
  }

 private:
  void ReadLine(std::string_view rest) {
    std::string_view words = rest;
    const std::string_view word = TakeWord(rest);
    if (word.empty()) return;
    const bool isLength = NumberOf(word.substr(word.starts_with('+') ? 1 : 0)).has_value();
    hasBegun_ = hasBegun_ || isLength || std::find(kWords.begin(), kWords.end(), word) != kWords.end();
    if (word == "pulse" || word == "space" || word == "timeout") return ReadLength(word, TakeWord(rest));
    if (word == "carrier") return ReadCarrier(TakeWord(rest));
    if (word == "scancode") return ReadScancode(TakeWord(rest));
    if (isLength) return ReadSigned(words);
    // Programs that receive tell first, in words, what they listen to.
    if (hasBegun_) reading_.Complain(line_, "found " + Quoted(word) + ", expected " + std::string(kExpected));
  }

  void Begin() {
    if (begun_) return;
    begun_ = true;
    key_ = {};
    key_.Line = line_;
    ahead_ = carrier_;
    toldWithin_ = false;
    if (!carriersFollow_) key_.Carrier = carrier_;
  }

  void EndKey() {
    if (!begun_) return;
    begun_ = false;
    LengthList lengths;
    for (const int length : train_.Take()) lengths.Add(length);
    train_ = {};
    if (!fault_.empty()) lengths.Refuse(fault_);
    fault_.clear();
    lastEnded_ = true;
    lastHasOwn_ = key_.Carrier.has_value();
    AddLengths(reading_, std::move(key_), std::move(lengths));
    if (!toldWithin_) carriersAhead_.emplace_back(file_.Remotes.back().Keys.size() - 1, ahead_);
  }

  /// @return 0 for a wrong length, which the key then tells
  int LengthOf(std::string_view word) {
    const std::optional<std::int64_t> length = NumberOf(word);
    if (length && *length > 0 && *length <= kLongestPulse) return static_cast<int>(*length);
    Fault("found " + Quoted(word) + ", expected a length from 1 to " + std::to_string(kLongestPulse) +
          " microseconds");
    return 0;
  }

  void Fault(const std::string& fault) {
    if (!fault_.empty()) return;
    fault_ = fault;
    key_.Line = line_;
  }

  void ReadLength(std::string_view kind, std::string_view word) {
    if (rest_ >= kPressSilence && kind == "pulse") EndKey();
    if (kind == "pulse") Begin();
    if (!begun_) return;
    const int length = LengthOf(word);
    if (kind == "pulse") {
      train_.Mark(length);
      rest_ = 0;
    } else {
      train_.Space(length);
      rest_ = std::min(rest_ + length, kPressSilence);
    }
    if (kind == "timeout") EndKey();
  }

  /// A receiver measures the carrier, and tells it after the press.
  void ReadCarrier(std::string_view word) {
    if (begun_ && key_.Carrier) EndKey();
    const std::optional<std::int64_t> carrier = NumberOf(word);
    if (!carrier || *carrier < 0 || *carrier > kMostCarrier) {
      reading_.Complain(line_, "found " + Quoted(word) + ", expected a carrier in Hz");
      return;
    }
    if (!carrier_) carriersFollow_ = begun_ || lastEnded_;
    carriersDiffer_ = carriersDiffer_ || (carrier_ && *carrier_ != *carrier);
    carrier_ = static_cast<int>(*carrier);
    if (begun_) {
      key_.Carrier = carrier_;
      toldWithin_ = true;
    } else if (carriersFollow_ && lastEnded_ && !file_.Remotes.back().Keys.back().Carrier) {
      file_.Remotes.back().Keys.back().Carrier = carrier_;
      lastHasOwn_ = true;
    }
  }

  void SetCarriersAhead() {
    for (const auto& [key, carrier] : carriersAhead_) file_.Remotes.back().Keys[key].Carrier = carrier;
  }

  /// The only line of a carrier holds for the whole file.
  void SetCarrierOfAll() {
    for (Remote& remote : file_.Remotes) {
      for (RemoteKey& key : remote.Keys) {
        if (!key.Lengths.empty() && !key.Protocol) key.Carrier = carrier_;
      }
    }
  }

  void ReadScancode(std::string_view word) {
    EndKey();
    lastEnded_ = false;
    RemoteKey key;
    key.Line = line_;
    const std::size_t colon = word.find(':');
    const std::string_view protocol = word.substr(0, colon);
    key.Protocol = protocol;
    const std::optional<std::uint64_t> value =
        colon == std::string_view::npos ? std::nullopt : CNumberOf(word.substr(colon + 1));
    std::string why = value ? TakeScancode(protocol, *value, key)
                            : "found " + Quoted(word) + ", expected a scancode such as nec:0x40";
    if (why.empty()) return reading_.Add(std::move(key));
    reading_.Skip(std::move(key), std::move(why));
  }

  void ReadSigned(std::string_view rest) {
    EndKey();
    Begin();
    bool mark = true;
    for (std::string_view word = TakeWord(rest); !word.empty(); word = TakeWord(rest), mark = !mark) {
      const bool isSigned = word.front() == '+' || word.front() == '-';
      if (isSigned && (word.front() == '+') != mark) {
        Fault("found " + Quoted(word) + ", expected a " + (mark ? "mark, +" : "space, -"));
      }
      const int length = LengthOf(isSigned ? word.substr(1) : word);
      if (mark) {
        train_.Mark(length);
      } else {
        train_.Space(length);
      }
    }
    EndKey();
  }

  FileReading reading_;
  RemoteFile& file_;
  RemoteKey key_;
  TrainWriter train_;
  std::string fault_;
  std::optional<int> carrier_;
  std::optional<int> ahead_;                                               // told last ahead of the press
  std::vector<std::pair<std::size_t, std::optional<int>>> carriersAhead_;  // of which key
  bool toldWithin_ = false;      // a carrier in the press itself, which is its own
  bool lastHasOwn_ = false;      // carrier, in the press or behind it
  bool carriersDiffer_ = false;  // from line to line
  int line_ = 0;
  bool carriersFollow_ = false;  // the presses that they are of
  bool hasBegun_ = false;        // some line was understood
  bool begun_ = false;           // a key
  bool lastEnded_ = false;       // the last key is a press that has ended
  int rest_ = 0;                 // microseconds since the last mark, as far as they count
};

void ReadPulses(std::string_view text, const std::string& path, RemoteFile& file) {
  PulseReader(path, file).Read(text);
}

/// The first word of a text that is not a comment, in its line.
std::string_view FirstLine(std::string_view text) {
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    const std::string_view words = Trimmed(WithoutComment(line));
    if (!words.empty()) return words;
  }
  return {};
}

/// Some programs tell first, in words, what they listen to.
bool IsPulses(std::string_view text) {
  constexpr int kLinesAhead = 5;
  Lines lines(text);
  std::string_view line;
  for (int ahead = 0; ahead <= kLinesAhead && lines.Next(line);) {
    line = Trimmed(WithoutComment(line));
    const std::string_view word = TakeWord(line);
    if (std::find(kWords.begin(), kWords.end(), word) != kWords.end()) return true;
    if (!word.empty()) ++ahead;
  }
  return false;
}

bool IsSigned(std::string_view text) {
  std::string_view rest = FirstLine(text);
  const std::string_view word = TakeWord(rest);
  return !word.empty() && NumberOf(word.substr(word.starts_with('+') ? 1 : 0)).has_value();
}

/// The text of all keys, with a line of the carrier where it changes.
/// @param carrierLine what stands before its value
template <typename WriteKey>
std::string WriteKeys(const std::vector<Remote>& remotes, std::vector<Complaint>& told,
                      std::string_view carrierLine, WriteKey write) {
  std::string text;
  int carrier = -1;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      if (!key.Coded && key.Lengths.empty()) continue;
      if (key.Name) TellOnce(told, "the format keeps no names; they stand in comments");
      if (key.Name) text += "# " + OnOneLine(*key.Name) + '\n';
      if (CarrierOf(key) != carrier) {
        carrier = CarrierOf(key);
        text += std::string(carrierLine) + std::to_string(carrier) + '\n';
      }
      TellRepeat(told, key);
      write(key, text);
    }
  }
  return text;
}

std::string WriteMode2(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  return WriteKeys(remotes, told, "carrier ", [](const RemoteKey& key, std::string& text) {
    PulseTrain press = PressOf(key);
    if (press.size() % 2 == 0) press.pop_back();
    text += Mode2Text(press) + "timeout " + std::to_string(kPressSilence) + '\n';
  });
}

std::string WriteSigned(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  // Beside such a line ir-ctl takes no other.
  return WriteKeys(remotes, told, kCarrierComment, [](const RemoteKey& key, std::string& text) {
    text += OneLineText(PressAndSilence(key));
  });
}

}  // namespace

const RemoteFormat kPulseFormat = {"mode2", "lines \"pulse N\" and \"space N\", and ir-ctl's scancodes",
                                   IsPulses, ReadPulses, WriteMode2};
const RemoteFormat kSignedFormat = {"one-line", "a line \"+N -N ...\" a key", IsSigned, ReadPulses,
                                    WriteSigned};

}  // namespace keplo::trade
