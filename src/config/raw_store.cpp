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

/// The file name for a section: characters other than letters, digits, - and _ become % and two hex digits.
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

RawEntries ReadRawFileToChange(CfgStore& store, const std::filesystem::path& path) try {
  return ReadRawFile(store, path);
} catch (const Failure& failure) {
  throw Failure(failure.Number(),
                failure.what() + std::string(". Bring an old copy of the file, or move away "
                                             "what is in its place, and try again."));
}

/// Reads the lengths of the wanted digits from a file. Others in it may be left over from a deleted command,
/// and must not replace what was recorded meanwhile.
/// @return false if the file cannot be read, which is added to Damage
bool TakeRawFile(CfgStore& store, const std::string& protocol, const std::set<std::string>& wanted) try {
  for (auto& [digits, entry] : ReadRawFile(store, RawFileOf(store, protocol))) {
    if (entry.Signal.Forms.empty() || wanted.count(digits) == 0) continue;
    store.Raw.Known.insert_or_assign(digits, std::move(entry.Signal));
  }
  return true;
} catch (const Failure& failure) {
  store.Raw.Damage.push_back(std::string("The lengths of raw commands cannot be read: ") + failure.what());
  return false;
}

void ReportLostLengths(CfgStore& store, const std::string& protocol, const std::vector<std::string>& names,
                       bool isReadable) {
  std::string text =
      RawFileOf(store, protocol).string() + ": the lengths of " + protocol + "&" + names.front();
  for (std::size_t i = 1; i < names.size(); ++i) {
    text.append(i + 1 == names.size() ? " and " : ", ").append(names[i]);
  }
  const bool one = names.size() == 1;
  store.Raw.Damage.push_back(
      text + " are missing or damaged, so that " + (one ? "it is" : "they are") +
      " neither heard nor sent. Bring an old copy of the file, or " +
      (isReadable ? "" : "move away what is in its place, ") + "delete " +
      (one ? "the command and learn it again." : "the commands and learn them again."));
}

/// Adds the commands of a section to the index.
void RefreshSection(CfgStore& store, const std::string& protocol, const std::vector<RawLine>& lines,
                    RawStore::Reading& last) {
  RawStore& raw = store.Raw;
  RawStore::Reading reading{store.Files.Identity(RawFileOf(store, protocol)), {}};
  for (const RawLine& line : lines) reading.Digits.insert(line.Digits);
  const auto isKnown = [&](const std::string& digits) { return raw.Known.count(digits) > 0; };
  const bool allKnown = std::all_of(reading.Digits.begin(), reading.Digits.end(), isKnown);
  const bool isReadable = (allKnown && reading == last) || TakeRawFile(store, protocol, reading.Digits);
  last = std::move(reading);
  std::vector<std::string> lost;
  for (const RawLine& line : lines) {
    if (isKnown(line.Digits)) {
      raw.Index.Add(raw.Known.at(line.Digits));
    } else {
      lost.push_back(line.Name);
    }
  }
  if (!lost.empty()) ReportLostLengths(store, protocol, lost, isReadable);
}

/// The raw commands of all conflict copies.
RawLines RawLinesOfConflictCopies(const CfgStore& store) {
  RawLines all;
  for (const std::filesystem::path& copy : ConflictCopiesOf(store.Files, store.Files.Resolve(store.Path))) {
    for (auto& [protocol, lines] : RawLinesIn(store.Files.Read(copy, kLargestRawFile))) {
      all[protocol].insert(all[protocol].end(), lines.begin(), lines.end());
    }
  }
  return all;
}

}  // namespace

void RefreshRaw(CfgStore& store) {
  RawStore& raw = store.Raw;
  raw.Index.Clear();
  raw.Damage.clear();
  std::map<std::string, RawStore::Reading> readings;
  for (const auto& [protocol, lines] : RawLinesIn(store.CfgText)) {
    RawStore::Reading& reading = readings[protocol] = std::move(raw.Readings[protocol]);
    RefreshSection(store, protocol, lines, reading);
  }
  raw.Readings = std::move(readings);
}

bool HaveRawFilesChanged(const CfgStore& store) {
  return std::any_of(store.Raw.Readings.begin(), store.Raw.Readings.end(), [&](const auto& reading) {
    return store.Files.Identity(RawFileOf(store, reading.first)) != reading.second.From;
  });
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
    File file{protocol, RawFileOf(store, protocol), DigitsOf(old, protocol), DigitsOf(fresh, protocol)};
    if (file.Wanted != file.Had) files_.push_back(std::move(file));
  }
  if (files_.empty()) return;
  const std::filesystem::path folder = FolderOf(files_.front().Path);
  store_.Files.MakeFolder(folder);
  folder_ = store_.Files.Lock(folder);
  for (const File& file : files_) AddNew(file);
}

void RawChange::AddNew(const File& file) {
  const auto known = [&](const std::string& digits) { return store_.Raw.Known.find(digits); };
  const bool isNew = std::any_of(file.Wanted.begin(), file.Wanted.end(), [&](const std::string& digits) {
    return file.Had.count(digits) == 0 && known(digits) != store_.Raw.Known.end();
  });
  if (!isNew) return;  // without reading the file, which may be damaged
  RawEntries entries = ReadRawFileToChange(store_, file.Path);
  const bool isFirst = entries.empty();
  for (const std::string& digits : file.Wanted) {
    const auto entry = entries.find(digits);
    const bool isWhole = entry != entries.end() && !entry->second.Signal.Forms.empty();
    if (isWhole && file.Had.count(digits) > 0) continue;
    if (known(digits) == store_.Raw.Known.end()) continue;
    entries.insert_or_assign(digits, MakeRawEntry(known(digits)->second));
  }
  ReplaceInLockedFolder(store_.Files, file.Path, WriteRawText(file.Protocol, entries));
  folder_->Flush();
  // The folder itself may be new, perhaps from an earlier change that failed.
  if (isFirst) store_.Files.Lock(FolderOf(store_.Path))->Flush();
}

void RawChange::DropLost(const File& file, const RawLines& aside) {
  RawEntries entries = ReadRawFile(store_, file.Path);
  const std::set<std::string> wantedAside = DigitsOf(aside, file.Protocol);
  const std::size_t all = entries.size();
  std::erase_if(entries, [&](const auto& entry) {
    return file.Wanted.count(entry.first) == 0 && wantedAside.count(entry.first) == 0;
  });
  if (entries.size() == all) return;
  if (entries.empty()) return store_.Files.Remove(file.Path);
  ReplaceInLockedFolder(store_.Files, file.Path, WriteRawText(file.Protocol, entries));
}

void RawChange::DropLost() noexcept try {
  if (files_.empty()) return;
  const RawLines aside = RawLinesOfConflictCopies(store_);
  for (const File& file : files_) {
    try {
      DropLost(file, aside);
    } catch (const Failure&) {
      continue;  // with the other sections
    }
  }
} catch (const std::exception&) {
  // Unused lengths do no harm; the next change of the section tries again.
  return;
}

}  // namespace keplo
