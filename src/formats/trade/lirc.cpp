#include <fnmatch.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>

#include "disk/read_input.h"
#include "formats/recording.h"
#include "formats/trade/lirc_remote.h"
#include "formats/trade/lirc_writer.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

constexpr std::size_t kLongestLine = 4096;  // characters, as the format's own program has it
constexpr int kDeepestInclude = 10;
constexpr std::size_t kMostIncludes = 200;  // files in all

struct LircFlag {
  std::string_view Name;
  bool LircRemote::*Flag;
};

constexpr std::array kFlags = {
    LircFlag{"RC5", &LircRemote::Rc5},
    LircFlag{"SHIFT_ENC", &LircRemote::Rc5},
    LircFlag{"RC6", &LircRemote::Rc6},
    LircFlag{"SPACE_FIRST", &LircRemote::SpaceFirst},
    LircFlag{"RAW_CODES", &LircRemote::Raw},
    LircFlag{"REVERSE", &LircRemote::Reverse},
    LircFlag{"NO_HEAD_REP", &LircRemote::NoHeadRepeat},
    LircFlag{"NO_FOOT_REP", &LircRemote::NoFootRepeat},
    LircFlag{"CONST_LENGTH", &LircRemote::ConstLength},
    LircFlag{"REPEAT_HEADER", &LircRemote::RepeatHeader},
};

struct PairField {
  std::string_view Name;
  Pulse LircRemote::*Field;
};

constexpr std::array kPairs = {
    PairField{"header", &LircRemote::Header}, PairField{"one", &LircRemote::One},
    PairField{"zero", &LircRemote::Zero},     PairField{"foot", &LircRemote::Foot},
    PairField{"repeat", &LircRemote::Repeat}, PairField{"pre", &LircRemote::Pre},
    PairField{"post", &LircRemote::Post},
};

struct NumberField {
  std::string_view Name;
  int LircRemote::*Field;
  int Most;
};

constexpr std::array kNumbers = {
    NumberField{"plead", &LircRemote::Lead, kLongestPulse},
    NumberField{"ptrail", &LircRemote::Trail, kLongestPulse},
    NumberField{"bits", &LircRemote::Bits, 64},
    NumberField{"pre_data_bits", &LircRemote::PreBits, 64},
    NumberField{"post_data_bits", &LircRemote::PostBits, 64},
    NumberField{"toggle_bit", &LircRemote::ToggleBit, 192},
    NumberField{"repeat_bit", &LircRemote::ToggleBit, 192},  // its name in old files
    NumberField{"gap", &LircRemote::Gap, kLongestPulse},
    NumberField{"frequency", &LircRemote::Carrier, kMostCarrier},
};

struct DataField {
  std::string_view Name;
  std::uint64_t LircRemote::*Field;
};

constexpr std::array kData = {
    DataField{"pre_data", &LircRemote::PreData},
    DataField{"post_data", &LircRemote::PostData},
    DataField{"toggle_bit_mask", &LircRemote::ToggleBitMask},
    DataField{"toggle_mask", &LircRemote::ToggleMask},
    DataField{"repeat_mask", &LircRemote::RepeatMask},
    DataField{"rc6_mask", &LircRemote::Rc6Mask},
};

template <typename Table>
auto Find(const Table& table, std::string_view name) {
  const auto found =
      std::find_if(table.begin(), table.end(), [&](const auto& row) { return SameNoCase(row.Name, name); });
  return found == table.end() ? nullptr : &*found;
}

class LircReader {
 public:
  LircReader(const std::string& path, RemoteFile& file, int depth, std::size_t& includes)
      : reading_(path, file), file_(file), depth_(depth), includes_(includes) {}

  void Read(std::string_view text) {
    Lines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
      line_ = lines.Number();
      if (line.size() > kLongestLine) {
        reading_.Complain(line_, "longer than " + std::to_string(kLongestLine) + " characters; left out");
      } else if (!line.starts_with('#')) {
        ReadLine(line);
      }
    }
    if (place_ != Place::Outside) {
      reading_.Complain(line_, "found the end of the file, expected \"end remote\"");
      // A code that the file breaks off in is none.
      const bool breaksOff = place_ == Place::RawCodes || (place_ == Place::Codes && !text.ends_with('\n'));
      if (breaksOff && !remote_.Codes.empty())
        remote_.Codes.back().Fault = "the file ends before the code does";
      EndRemote();
    }
  }

 private:
  enum class Place : std::uint8_t { Outside, Remote, Codes, RawCodes };

  void ReadLine(std::string_view rest) {
    const std::string_view word = TakeWord(rest);
    if (word.empty()) return;
    if (SameNoCase(word, "begin")) return Begin(TakeWord(rest));
    if (SameNoCase(word, "end")) return End(TakeWord(rest));
    switch (place_) {
      case Place::Outside:
        if (SameNoCase(word, "include")) return Include(Trimmed(rest));
        if (word.front() != '#') Refuse(word, "\"begin remote\" or \"include\"");
        return;
      case Place::Remote:
        return ReadParameter(word, rest);
      case Place::Codes:
        return ReadCode(word, rest);
      case Place::RawCodes:
        return ReadRaw(word, rest);
    }
  }

  void Refuse(std::string_view found, std::string_view expected) {
    reading_.Complain(line_, "found " + Quoted(found) + ", expected " + std::string(expected));
  }

  void Begin(std::string_view what) {
    if (place_ == Place::Outside && SameNoCase(what, "remote")) {
      remote_ = {};
      place_ = Place::Remote;
    } else if (place_ == Place::Remote && SameNoCase(what, "codes")) {
      place_ = Place::Codes;
    } else if (place_ == Place::Remote && SameNoCase(what, "raw_codes")) {
      place_ = Place::RawCodes;
      remote_.Raw = true;
    } else {
      Refuse(what, place_ == Place::Outside ? "\"remote\"" : "\"codes\" or \"raw_codes\" within a remote");
    }
  }

  void End(std::string_view what) {
    if (SameNoCase(what, "remote") && place_ != Place::Outside) {
      EndRemote();
    } else if ((place_ == Place::Codes && SameNoCase(what, "codes")) ||
               (place_ == Place::RawCodes && SameNoCase(what, "raw_codes"))) {
      place_ = Place::Remote;
    } else {
      Refuse(what, "the end of what was begun");
    }
  }

  void EndRemote() {
    place_ = Place::Outside;
    reading_.BeginRemote(remote_.Name.empty() ? NameOfPath(reading_.Path()) : remote_.Name);
    for (LircCode& code : remote_.Codes) {
      // A closing space of a raw code is a part of the gap.
      if (code.Lengths.size() % 2 == 0 && !code.Lengths.empty()) code.Lengths.pop_back();
      RemoteKey key;
      key.Name = code.Name;
      key.Line = code.Line;
      if (std::string why = TakeLircCode(remote_, code, key); !why.empty()) {
        reading_.Skip(std::move(key), std::move(why));
      } else {
        reading_.Add(std::move(key));
      }
    }
  }

  void ReadParameter(std::string_view word, std::string_view rest) {
    if (word.front() == '#') return;
    if (SameNoCase(word, "name")) {
      remote_.Name = TakeWord(rest);
    } else if (SameNoCase(word, "driver")) {
      remote_.Driver = TakeWord(rest);
    } else if (SameNoCase(word, "flags")) {
      ReadFlags(TakeWord(rest));
    } else if (const PairField* const pair = Find(kPairs, word)) {
      Pulse& pulse = remote_.*pair->Field;
      pulse.Mark = ReadNumber(TakeWord(rest), kLongestPulse);
      pulse.Space = ReadNumber(TakeWord(rest), kLongestPulse);
    } else if (const NumberField* const number = Find(kNumbers, word)) {
      remote_.*number->Field = ReadNumber(TakeWord(rest), number->Most);
      if (number->Field == &LircRemote::Gap) ReadSecondGap(TakeWord(rest));
    } else if (const DataField* const data = Find(kData, word)) {
      const std::string_view value = TakeWord(rest);
      const std::optional<std::uint64_t> field = CNumberOf(value);
      if (!field) return RefuseParameter(value, "a number");
      remote_.*data->Field = *field;
    }
  }

  /// Of two gaps its own program sends the shorter one.
  void ReadSecondGap(std::string_view word) {
    if (word.empty() || word.front() == '#') return;
    if (const int gap = ReadNumber(word, kLongestPulse); gap > 0) remote_.Gap = std::min(remote_.Gap, gap);
  }

  int ReadNumber(std::string_view word, int most) {
    const std::optional<std::uint64_t> number = CNumberOf(word);
    if (number && *number <= static_cast<std::uint64_t>(most)) return static_cast<int>(*number);
    RefuseParameter(word, "a number from 0 to " + std::to_string(most));
    return 0;
  }

  /// Without one of its parameters no code of a remote is what it was.
  void RefuseParameter(std::string_view found, const std::string& expected) {
    Refuse(found, expected);
    remote_.Fault = "line " + std::to_string(line_) + " of its remote cannot be read";
  }

  /// Behind a blank the format's own program reads no flag.
  void ReadFlags(std::string_view rest) {
    while (!rest.empty()) {
      const std::size_t end = rest.find('|');
      const std::string_view name = Trimmed(rest.substr(0, end));
      rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
      if (const LircFlag* const flag = Find(kFlags, name)) {
        remote_.*flag->Flag = true;
      } else if (!name.empty() && !SameNoCase(name, "SPACE_ENC")) {
        remote_.Foreign = name;
      }
    }
  }

  void ReadCode(std::string_view name, std::string_view rest) {
    // A key may be called # itself, and people indent comments.
    std::string_view after = rest;
    if (name.front() == '#' && !CNumberOf(TakeWord(after))) return;
    LircCode code;
    code.Name = name;
    code.Line = line_;
    for (std::string_view word = TakeWord(rest); !word.empty() && word.front() != '#';
         word = TakeWord(rest)) {
      const std::optional<std::uint64_t> value = CNumberOf(word);
      if (!value && code.Fault.empty()) {
        code.Fault = "found " + Quoted(word) + ", expected a code such as 0x20DF10EF";
      }
      code.Values.push_back(value.value_or(0));
    }
    if (code.Values.empty()) code.Fault = "found the end of the line, expected a code such as 0x20DF10EF";
    remote_.Codes.push_back(std::move(code));
  }

  void ReadRaw(std::string_view word, std::string_view rest) {
    if (SameNoCase(word, "name")) {
      remote_.Codes.push_back({std::string(TakeWord(rest)), line_, {}, {}, {}});
      return;
    }
    for (; !word.empty() && word.front() != '#'; word = TakeWord(rest)) {
      if (remote_.Codes.empty()) return Refuse(word, R"("name" ahead of the lengths)");
      AddRawLength(remote_.Codes.back(), word);
    }
  }

  static void AddRawLength(LircCode& code, std::string_view word) {
    const std::optional<std::uint64_t> length = CNumberOf(word);
    if (!length || *length == 0 || *length > kLongestPulse) {
      code.Fault = "found " + Quoted(word) + ", expected a length from 1 to " +
                   std::to_string(kLongestPulse) + " microseconds";
    } else if (code.Lengths.size() == kMostLengths) {
      code.Fault = "more than " + std::to_string(kMostLengths) + " lengths, which no sender plays";
    } else {
      code.Lengths.push_back(static_cast<int>(*length));
    }
  }

  /// Files below the file's own folder only: what a stranger's file names must not be read from elsewhere.
  void Include(std::string_view name) {
    namespace fs = std::filesystem;
    if (name.size() >= 2 && (name.front() == '"' || name.front() == '<'))
      name = name.substr(1, name.size() - 2);
    std::error_code error;
    const fs::path folder = fs::weakly_canonical(fs::absolute(reading_.Path(), error).parent_path(), error);
    const fs::path wanted = folder / fs::path(name);
    const fs::path from = fs::weakly_canonical(wanted.parent_path(), error);
    const bool inside =
        !error && fs::exists(reading_.Path(), error) &&
        std::mismatch(folder.begin(), folder.end(), from.begin(), from.end()).first == folder.end();
    if (!inside) {
      reading_.Complain(line_,
                        "found include " + Quoted(name) + ", expected a file in the same folder; left out");
      return;
    }
    std::vector<fs::path> files;
    for (auto entry = fs::directory_iterator(from, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
      const bool fits = fnmatch(wanted.filename().c_str(), entry->path().filename().c_str(), FNM_PERIOD) == 0;
      if (fits && entry->symlink_status().type() == fs::file_type::regular) files.push_back(entry->path());
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) Refuse(name, "a file that is there");
    for (const fs::path& file : files) IncludeFile(file.string());
  }

  void IncludeFile(const std::string& path) try {
    if (depth_ == kDeepestInclude || ++includes_ > kMostIncludes) {
      reading_.Complain(line_, "includes are too many or too deep; " + path + " is left out");
      return;
    }
    const std::string text = ReadInput(path, kLargestRecording);
    if (text.size() > kLargestRecording || text.find('\0') != std::string::npos) {
      reading_.Complain(line_, "the included " + path + " is too large or no text; left out");
      return;
    }
    LircReader(path, file_, depth_ + 1, includes_).Read(text);
  } catch (const std::system_error& error) {
    reading_.Complain(line_, "the included " + path + " cannot be read: " + error.code().message());
  }

  FileReading reading_;
  RemoteFile& file_;
  LircRemote remote_;
  Place place_ = Place::Outside;
  int line_ = 0;
  int depth_;
  std::size_t& includes_;
};

void ReadLirc(std::string_view text, const std::string& path, RemoteFile& file) {
  std::size_t includes = 0;
  LircReader(path, file, 0, includes).Read(text);
}

bool IsLirc(std::string_view text) {
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    const std::string_view first = TakeWord(line);
    if (SameNoCase(first, "begin") && SameNoCase(TakeWord(line), "remote")) return true;
    const std::string_view file = Trimmed(line);
    if (SameNoCase(first, "include") && (file.starts_with('"') || file.starts_with('<'))) return true;
  }
  return false;
}

}  // namespace

const RemoteFormat kLircFormat = {"lirc", "LIRC's lircd.conf", IsLirc, ReadLirc, WriteLirc, KeptForms::Digit};

}  // namespace keplo::trade
