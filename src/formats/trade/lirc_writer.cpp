#include "formats/trade/lirc_writer.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

#include "formats/families.h"
#include "formats/trade/reading.h"

namespace keplo::trade {

namespace {

constexpr std::size_t kMostDigits = 64;  // of a code
constexpr std::size_t kRc5Digits = 14;   // the first of which is the lead
constexpr int kUsualLircGap = 40'000;    // microseconds
constexpr std::size_t kLengthsPerLine = 8;

/// Words may have no blanks in them, and be none of those that begin and end a list.
std::string Word(std::string_view name) {
  std::string word(name.empty() ? "_" : name);
  std::replace_if(
      word.begin(), word.end(), [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }, '_');
  if (SameNoCase(word, "begin") || SameNoCase(word, "end")) word.insert(0, 1, '_');
  return word;
}

/// Why a name is written as another word.
std::string_view WhyWritten(std::string_view name, std::string_view word) {
  const std::string wanted = Word(name);
  if (word != wanted) return wanted == name ? "since another has that name" : "one word that no other has";
  return name.empty() || wanted.size() == name.size() ? "one word" : "since the format has that word itself";
}

std::string PairLine(std::string_view name, const Pulse& pulse) {
  return "  " + std::string(name) + ' ' + std::to_string(pulse.Mark) + ' ' + std::to_string(pulse.Space) +
         '\n';
}

std::string NumberLine(std::string_view name, int number) {
  return "  " + std::string(name) + ' ' + std::to_string(number) + '\n';
}

bool AsDigits(const RemoteKey& key) {
  if (!key.Coded) return false;
  const std::size_t digits = key.Coded->Digits.size();
  return key.Coded->Code.Line == LineCode::Biphase ? digits == kRc5Digits : digits <= kMostDigits;
}

/// How a key is repeated, with the gap that its file tells beside lengths where its digits have none.
Repeat RepeatWithGap(const RemoteKey& key) {
  Repeat again = key.Coded ? key.Coded->Again : Repeat{};
  if (again.Gap > 0 || key.Gap == 0) return again;
  again.Gap = key.Gap;
  again.FromStart = key.GapFromStart;
  return again;
}

/// Keys of one head can stand in one remote of the format.
bool SameHead(const RemoteKey& left, const RemoteKey& right) {
  if (AsDigits(left) != AsDigits(right) || CarrierOf(left) != CarrierOf(right)) return false;
  if (!AsDigits(left)) return left.Gap == right.Gap && left.GapFromStart == right.GapFromStart;
  return left.Coded->Code == right.Coded->Code && RepeatWithGap(left) == RepeatWithGap(right) &&
         left.Coded->Toggle == right.Coded->Toggle && left.Coded->Digits.size() == right.Coded->Digits.size();
}

class LircWriter {
 public:
  explicit LircWriter(std::vector<Complaint>& told) : told_(told) {}

  std::string Write(const std::vector<Remote>& remotes) {
    for (const Remote& remote : remotes) {
      if (!remote.Name.empty() && Word(remote.Name) == remote.Name) own_.insert(remote.Name);
    }
    taken_ = own_;
    for (const Remote& remote : remotes) {
      std::vector<const RemoteKey*> left;
      TakeNames(remote);
      for (const RemoteKey& key : remote.Keys) {
        if (key.Coded || !key.Lengths.empty()) left.push_back(&key);
      }
      for (bool again = false; !left.empty(); again = true) {
        if (again) TellOnce(told_, "a remote is written as several, one for each way of sending");
        const RemoteKey& first = *left.front();
        const auto rest = std::stable_partition(left.begin(), left.end(),
                                                [&](const RemoteKey* key) { return SameHead(*key, first); });
        WriteRemote(remote.Name, {left.begin(), rest}, again);
        left.erase(left.begin(), rest);
      }
    }
    return text_;
  }

 private:
  using Words = std::set<std::string>;

  static std::string FreeWord(const std::string& wanted, Words& taken) {
    std::string free = wanted;
    for (int number = 2; !taken.insert(free).second; ++number) free = wanted + '-' + std::to_string(number);
    return free;
  }

  void TellName(std::string_view name, std::string_view word) {
    if (name != word)
      TellOnce(told_, (name.empty() ? "an empty name" : "the name " + Quoted(name)) + " is written as " +
                          Quoted(word) + ", " + std::string(WhyWritten(name, word)));
  }

  /// Names that are words keep theirs; equal names of the file stay equal, and no others become so.
  void TakeNames(const Remote& remote) {
    std::map<std::string, std::string> words;
    Words taken;
    for (const RemoteKey& key : remote.Keys) {
      if (key.Name && Word(*key.Name) == *key.Name) taken.insert(*key.Name);
    }
    for (const RemoteKey& key : remote.Keys) {
      const std::string name = NameFor(key, names_.size() + 1);
      std::string& word = words[name];
      if (word.empty()) word = key.Name && Word(name) == name ? name : FreeWord(Word(name), taken);
      names_.emplace(&key, word);
      if (key.Name) TellName(name, word);
    }
  }

  void WriteRemote(const std::string& name, const std::vector<const RemoteKey*>& keys, bool again) {
    const RemoteKey& first = *keys.front();
    // The first of that name keeps it, and no part of another remote takes it away.
    const bool keeps = !again && own_.erase(name) > 0;
    const std::string word = keeps ? name : FreeWord(Word(name.empty() ? "remote" : name), taken_);
    if (!name.empty() && !again) TellName(name, word);
    text_ += "begin remote\n\n  name " + word + '\n';
    if (AsDigits(first)) {
      WriteHead(*first.Coded, RepeatWithGap(first));
    } else {
      text_ += std::string("  flags RAW_CODES") + (first.GapFromStart ? "|CONST_LENGTH" : "") + '\n';
      text_ += NumberLine("gap", first.Gap > 0 ? first.Gap : kUsualLircGap);
    }
    text_ += NumberLine("eps", 30) + NumberLine("aeps", 100) + NumberLine("frequency", CarrierOf(first));
    const std::string codes = AsDigits(first) ? "codes" : "raw_codes";
    text_ += "\n  begin " + codes + '\n';
    for (const RemoteKey* key : keys) {
      if (AsDigits(first)) {
        WriteCode(*key);
      } else {
        WriteRaw(*key);
      }
    }
    text_ += "  end " + codes + "\n\nend remote\n\n";
  }

  void WriteHead(const CodedSignal& signal, const Repeat& again) {
    const Coding& code = signal.Code;
    const bool biphase = code.Line == LineCode::Biphase;
    text_ += std::string("  flags ") + (biphase ? "RC5" : "SPACE_ENC") +
             (again.Kind == RepeatKind::Body ? "|NO_HEAD_REP" : "") +
             (again.FromStart && again.Gap > 0 ? "|CONST_LENGTH" : "") + '\n';
    const auto digits = static_cast<int>(signal.Digits.size());
    text_ += NumberLine("bits", biphase ? digits - 1 : digits);
    if (code.HasSync()) text_ += PairLine("header", code.Sync);
    text_ += PairLine("one", code.One) + PairLine("zero", code.Zero);
    if (biphase) text_ += NumberLine("plead", code.One.Mark);
    if (code.Tail > 0) text_ += NumberLine("ptrail", code.Tail);
    if (again.Kind == RepeatKind::Short) text_ += PairLine("repeat", again.ShortSync);
    // A header that repeats have not does not count.
    const bool uncounted = again.Kind == RepeatKind::Body && again.FromStart;
    const int gap = again.Gap - (uncounted ? code.Sync.Mark + code.Sync.Space : 0);
    text_ += NumberLine("gap", gap > 0 ? gap : kUsualLircGap);
    if (biphase) text_ += "  toggle_bit_mask 0x800\n";
    if (signal.Toggle && !biphase) text_ += NumberLine("toggle_bit", static_cast<int>(*signal.Toggle) + 1);
    if (again.Kind == RepeatKind::None || again.Kind == RepeatKind::Unknown) {
      TellOnce(told_, "the format always repeats a held key; where that is not told, by the frame");
    }
  }

  void WriteCode(const RemoteKey& key) {
    std::string_view digits = key.Coded->Digits;
    if (key.Coded->Code.Line == LineCode::Biphase) digits.remove_prefix(1);
    text_ += "    " + names_.at(&key) + " 0x" + HexText(HighFirst(digits)) + '\n';
  }

  void WriteRaw(const RemoteKey& key) {
    PulseTrain press = PressOf(key);
    if (press.size() % 2 == 0) press.pop_back();
    text_ += "    name " + names_.at(&key);
    for (std::size_t i = 0; i < press.size(); ++i) {
      text_ += (i % kLengthsPerLine == 0 ? "\n      " : " ") + std::to_string(press[i]);
    }
    text_ += '\n';
  }

  std::vector<Complaint>& told_;
  std::map<const RemoteKey*, std::string> names_;
  Words taken_;  // by remotes
  Words own_;    // names of remotes that are words, and are not written yet
  std::string text_;
};

}  // namespace

std::string WriteLirc(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  return LircWriter(told).Write(remotes);
}

}  // namespace keplo::trade
