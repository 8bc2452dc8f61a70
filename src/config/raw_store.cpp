#include "config/raw_store.h"

#include <algorithm>
#include <cerrno>
#include <set>

#include "config/cfg_store.h"
#include "config/commands.h"
#include "config/protocols.h"
#include "config/raw_file.h"
#include "config/valid_names.h"
#include "disk/replace_file.h"
#include "failure.h"
#include "signal/raw/raw_digits.h"

namespace keplo {

namespace {

constexpr std::size_t kLargestRawFile = std::size_t{64} * 1024 * 1024;  // bytes; 500 commands have 2 MB

/// A raw command as the text has it.
struct RawLine {
  std::string Digits, Name;
};
using RawLines = std::map<std::string, std::vector<RawLine>>;  // by section

RawLines RawLinesIn(std::string_view text) {
  RawLines lines;
  if (text.find(kRawHead) == std::string_view::npos) return lines;
  for (const std::string& protocol : ListProtocols(text)) {
    for (LearnedCommand& command : ListCommands(text, protocol)) {
      if (command.Code.empty() || !AreRawDigits(std::string_view(command.Code).substr(1))) continue;
      lines[protocol].push_back({command.Code.substr(1), std::string(Trimmed(command.Name))});
    }
  }
  return lines;
}

std::set<std::string> DigitsOf(const RawLines& lines, const std::string& protocol) {
  std::set<std::string> digits;
  const auto section = lines.find(protocol);
  if (section == lines.end()) return digits;
  for (const RawLine& line : section->second) digits.insert(line.Digits);
  return digits;
}

/// The name of a section as that of a file: other characters than letters, digits, - and _ as % and two hex
/// digits.
std::string FileNameOf(const std::string& protocol) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  std::string name;
  for (const char character : protocol) {
    std::string tested(1, character);
    if (IsValidName(tested) && !tested.empty()) {
      name += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    name.append(1, '%').append(1, kHex[byte / 16]).append(1, kHex[byte % 16]);
  }
  return name;
}

std::filesystem::path RawFileOf(const CfgStore& store, const std::string& protocol) {
  return FolderOf(store.Path) / "raw" / (FileNameOf(protocol) + ".mode2");
}

RawEntries ReadRawFile(CfgStore& store, const std::filesystem::path& path) try {
  return ReadRawText(store.Files.Read(path, kLargestRawFile));
} catch (const Failure& failure) {
  if (failure.Number() == ENOENT) return {};
  throw;
}

void TakeRawFile(CfgStore& store, const std::string& protocol) try {
  for (auto& [digits, entry] : ReadRawFile(store, RawFileOf(store, protocol))) {
    if (!entry.Signal.Forms.empty()) store.Raw.Known.insert_or_assign(digits, std::move(entry.Signal));
  }
} catch (const Failure& failure) {
  store.Raw.Damage.push_back(std::string("The lengths of raw commands cannot be read: ") + failure.what());
}

void TellLost(CfgStore& store, const std::string& protocol, const std::vector<std::string>& names) {
  std::string text =
      RawFileOf(store, protocol).string() + ": the lengths of " + protocol + "&" + names.front();
  for (std::size_t i = 1; i < names.size(); ++i) {
    text.append(i + 1 == names.size() ? " and " : ", ").append(names[i]);
  }
  const bool one = names.size() == 1;
  store.Raw.Damage.push_back(
      text + " are missing or damaged, so that " + (one ? "it is" : "they are") +
      " neither heard nor sent. Bring an old copy of the file, or delete " +
      (one ? "the command and learn it again." : "the commands and learn them again."));
}

}  // namespace

void RefreshRaw(CfgStore& store) {
  RawStore& raw = store.Raw;
  raw.Index.Clear();
  raw.Damage.clear();
  for (const auto& [protocol, lines] : RawLinesIn(store.CfgText)) {
    const auto isKnown = [&](const RawLine& line) { return raw.Known.count(line.Digits) > 0; };
    if (!std::all_of(lines.begin(), lines.end(), isKnown)) TakeRawFile(store, protocol);
    std::vector<std::string> lost;
    for (const RawLine& line : lines) {
      if (isKnown(line)) {
        raw.Index.Add(raw.Known.at(line.Digits));
      } else {
        lost.push_back(line.Name);
      }
    }
    if (!lost.empty()) TellLost(store, protocol, lost);
  }
}

const RawSignal* FindRawSignal(const CfgStore& store, std::string_view code) {
  if (code.empty() || !AreRawDigits(code.substr(1))) return nullptr;
  const auto known = store.Raw.Known.find(code.substr(1));
  return known == store.Raw.Known.end() ? nullptr : &known->second;
}

RawChange::RawChange(CfgStore& store, std::string_view before, std::string_view after) : store_(store) {
  if (before == after) return;
  const RawLines old = RawLinesIn(before), fresh = RawLinesIn(after);
  std::set<std::string> protocols;
  for (const RawLines* lines : {&old, &fresh}) {
    for (const auto& [protocol, commands] : *lines) protocols.insert(protocol);
  }
  for (const std::string& protocol : protocols) {
    const std::set<std::string> wanted = DigitsOf(fresh, protocol);
    if (wanted == DigitsOf(old, protocol)) continue;
    files_.push_back({protocol, RawFileOf(store, protocol), {wanted.begin(), wanted.end()}});
  }
  if (files_.empty()) return;
  const std::filesystem::path folder = FolderOf(files_.front().Path);
  store_.Files.MakeFolder(folder);
  folder_ = store_.Files.Lock(folder);
  for (const File& file : files_) AddNew(file);
}

void RawChange::AddNew(const File& file) {
  RawEntries entries = ReadRawFile(store_, file.Path);
  const bool isFirst = entries.empty();
  bool isNew = false;
  for (const std::string& digits : file.Wanted) {
    const auto entry = entries.find(digits);
    if (entry != entries.end() && !entry->second.Signal.Forms.empty()) continue;
    const auto known = store_.Raw.Known.find(digits);
    if (known == store_.Raw.Known.end()) continue;
    entries.insert_or_assign(digits, MakeRawEntry(known->second));
    isNew = true;
  }
  if (!isNew) return;
  ReplaceInLockedFolder(store_.Files, file.Path, WriteRawText(file.Protocol, entries));
  folder_->Flush();
  // The folder itself may be new, be it from a change that went no further.
  if (isFirst) store_.Files.Lock(FolderOf(store_.Path))->Flush();
}

void RawChange::DropLost(const File& file) {
  RawEntries entries = ReadRawFile(store_, file.Path);
  const std::size_t all = entries.size();
  for (auto entry = entries.begin(); entry != entries.end();) {
    const bool wanted = std::binary_search(file.Wanted.begin(), file.Wanted.end(), entry->first);
    entry = wanted ? std::next(entry) : entries.erase(entry);
  }
  if (entries.size() == all) return;
  if (entries.empty()) return store_.Files.Remove(file.Path);
  ReplaceInLockedFolder(store_.Files, file.Path, WriteRawText(file.Protocol, entries));
}

void RawChange::DropLost() noexcept {
  for (const File& file : files_) {
    try {
      DropLost(file);
    } catch (const std::exception&) {
      // Lengths without a command count for nothing; the next change of the section tries again.
      continue;
    }
  }
}

}  // namespace keplo
