#include <algorithm>
#include <array>
#include <filesystem>

#include "formats/irp.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo::trade {

namespace {

constexpr std::string_view kHeader = "functionname,protocol,device,subdevice,function";
constexpr std::size_t kColumns = 5;
constexpr std::size_t kMostColumns = 20;

/// The fields of a line; quotes within quotes are doubled. Without a comma they are parted by tabs.
std::vector<std::string> FieldsOf(std::string_view line) {
  std::vector<std::string> fields(1);
  const char part = line.find(',') == std::string_view::npos ? '\t' : ',';
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '"' && quoted && i + 1 < line.size() && line[i + 1] == '"') {
      fields.back() += c;
      ++i;
    } else if (c == '"' && (quoted || Trimmed(fields.back()).empty())) {
      quoted = !quoted;
    } else if (c == part && !quoted && fields.size() < kMostColumns) {
      fields.emplace_back();
    } else {
      fields.back() += c;
    }
  }
  return fields;
}

/// A name that has commas and no quotes takes the fields that are too many, but for empty ones at the end.
void JoinName(std::vector<std::string>& fields, std::size_t columns) {
  while (fields.size() > columns && Trimmed(fields.back()).empty()) fields.pop_back();
  while (fields.size() > columns) {
    fields[0] += ',' + fields[1];
    fields.erase(fields.begin() + 1);
  }
}

/// The files of the collection lie in MANUFACTURER/DEVICE_MODEL and are named by their device.
std::string RemoteName(const std::string& path) {
  std::string name = NameOfPath(path);
  const bool byDevice = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return c == ',' || c == '-' || (c >= '0' && c <= '9');
  });
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  if (!byDevice || folder.empty()) return name;
  const std::string maker = folder.parent_path().filename().string();
  return (maker.empty() ? "" : maker + ' ') + folder.filename().string();
}

class IrdbReader {
 public:
  IrdbReader(const std::string& path, RemoteFile& file) : reading_(path, file) {
    reading_.BeginRemote(RemoteName(path));
  }

  void Read(std::string_view text) {
    Lines lines(text);
    std::string_view line;
    while (lines.Next(line)) {
      if (Trimmed(line).empty()) continue;
      const std::vector<std::string> fields = FieldsOf(line);
      if (SameNoCase(Trimmed(fields[0]), "functionname")) {
        columns_ = std::clamp<std::size_t>(fields.size(), kColumns - 1, kColumns);
      } else {
        ReadRow(line, lines.Number());
      }
    }
  }

 private:
  void ReadRow(std::string_view line, int number) {
    std::vector<std::string> fields = FieldsOf(line);
    JoinName(fields, columns_);
    RemoteKey key;
    key.Line = number;
    key.Name = std::string(Trimmed(fields[0]));
    if (fields.size() < columns_) {
      return reading_.Skip(std::move(key), "found " + std::to_string(fields.size()) +
                                               (fields.size() == 1 ? " field" : " fields") + ", expected " +
                                               std::string(kHeader));
    }
    const std::string protocol(Trimmed(fields[1]));
    if (protocol.empty()) return reading_.Skip(std::move(key), UnknownProtocol(protocol));
    key.Protocol = protocol;
    ProtocolValues values;
    const bool hasSub = columns_ == kColumns;
    for (const auto& [field, value] :
         {std::pair{std::size_t{2}, &ProtocolValues::D},
          std::pair{std::size_t{3}, hasSub ? &ProtocolValues::S : &ProtocolValues::F},
          std::pair{columns_ - 1, &ProtocolValues::F}}) {
      const std::string_view word = Trimmed(fields[field]);
      // What is not told of a device is that it has no part.
      if (word.empty() && value == &ProtocolValues::S) continue;
      const std::optional<std::int64_t> number64 = NumberOf(word);
      if (!number64 || *number64 < -1 || *number64 > 65535) {
        return reading_.Skip(std::move(key),
                             "found " + Quoted(word) + ", expected a number from -1 to 65535");
      }
      values.*value = static_cast<long>(*number64);
    }
    if (std::string why = TakeValues(protocol, values, key); !why.empty()) {
      return reading_.Skip(std::move(key), protocol + ": " + why);
    }
    reading_.Add(std::move(key));
  }

  FileReading reading_;
  std::size_t columns_ = kColumns;
};

void ReadIrdb(std::string_view text, const std::string& path, RemoteFile& file) {
  IrdbReader(path, file).Read(text);
}

/// Its header, or a row of a name, a word and three numbers.
bool IsIrdb(std::string_view text) {
  Lines lines(text);
  std::string_view line;
  while (lines.Next(line)) {
    if (Trimmed(line).empty()) continue;
    std::vector<std::string> fields = FieldsOf(line);
    if (fields.size() > 1 && SameNoCase(Trimmed(fields[0]), "functionname") &&
        SameNoCase(Trimmed(fields[1]), "protocol")) {
      return true;
    }
    JoinName(fields, kColumns);
    return fields.size() == kColumns && !Trimmed(fields[1]).empty() && !NumberOf(Trimmed(fields[1])) &&
           NumberOf(Trimmed(fields[2])) && NumberOf(Trimmed(fields[3])) && NumberOf(Trimmed(fields[4]));
  }
  return false;
}

std::string CsvField(std::string_view text) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  std::string field = "\"";
  for (const char c : OnOneLine(text)) field += c == '"' ? std::string("\"\"") : std::string(1, c);
  return field + '"';
}

std::string WriteIrdb(const std::vector<Remote>& remotes, std::vector<Complaint>& told) {
  std::string text = std::string(kHeader) + '\n';
  std::size_t number = 0;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      ++number;
      if (!key.Coded && key.Lengths.empty()) continue;
      const std::string name = NameFor(key, number);
      const std::optional<NamedValues> named = ValuesOf(key);
      if (!named) {
        TellOfKey(told, key, name, "the format has no protocol for it");
        continue;
      }
      if (named->OwnCarrier) TellOnce(told, "the format keeps no carrier but that of the protocol");
      if (named->OwnRepeat) TellOnce(told, "the format keeps no way to repeat but that of the protocol");
      const ProtocolValues& values = named->Values;
      text += CsvField(name) + ',' + std::string(named->Protocol) + ',' + std::to_string(values.D) + ',' +
              std::to_string(values.S) + ',' + std::to_string(values.F) + '\n';
    }
  }
  return text;
}

}  // namespace

const RemoteFormat kIrdbFormat = {"irdb", "csv files of IRDB", IsIrdb, ReadIrdb, WriteIrdb, KeptForms::None};

}  // namespace keplo::trade
