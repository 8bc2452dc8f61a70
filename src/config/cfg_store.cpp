#include "config/cfg_store.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "disk/replace_file.h"
#include "failure.h"

namespace keplo {

namespace {

/// The text that goes to the file: up to the closing header, which ends its line. Empty if there is no
/// header.
std::string CutBehindLastHeader(std::string text) {
  text.erase(text.rfind(']') + 1);
  return text.empty() ? text : text.append("\r\n");
}

constexpr std::array<std::string_view, 13> kWrittenKeys = {
    "COMPORT=", "PROTOCOL=", "PROCDELAY=", "ITYPE=", "BEEPON=", "VEXIL=",  "GPROTO=",
    "SENDPLS=", "REPEAT=",   "BITG=",      "BIT0=",  "BIT1=",   "GREPEAT="};

/// The key that a line begins with; empty if it begins with none.
std::string_view KeyOf(std::string_view line) {
  const auto* const key = std::find_if(
      kWrittenKeys.begin(), kWrittenKeys.end(),
      [&](std::string_view candidate) { return EqualNoCase(line.substr(0, candidate.size()), candidate); });
  return key == kWrittenKeys.end() ? std::string_view() : *key;
}

/// Writes in the blank that belongs behind a key's =, where a hand-edited file lacks it. A sign may stand in
/// its place.
std::string WithBlanks(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    const std::string_view line = text.substr(0, end);
    const std::size_t key = KeyOf(line).size();
    result += line.substr(0, key);
    if (key > 0 && key < line.size() && line[key] != ' ' && line[key] != '-') result += ' ';
    result += line.substr(key);
    text.remove_prefix(end);
  }
  return result;
}

/// Loses nothing that another program has written to the file since this one knows it.
/// @return where it is kept; empty if there was nothing
std::filesystem::path KeepOtherText(const CfgStore& store, const std::filesystem::path& target,
                                    const std::string& found) {
  if (!store.FileText || found == *store.FileText) return {};
  if (store.RefusesOtherText) throw ChangedElsewhere(target);
  return KeepAside(store.Files, target, found);
}

}  // namespace

void CfgStore::RequireRoom(std::size_t length) const {
  if (length <= kMostCharacters) return;
  throw Failure(EFBIG, Path.string() + " would be of " + std::to_string(length) +
                           " characters; the limit is " + std::to_string(kMostCharacters) +
                           ". Take out commands or protocols that are not needed.");
}

void CfgStore::ReplaceText(std::string text) {
  RequireRoom(text.size());
  CfgText = std::move(text);
}

void LoadConfig(CfgStore& store) {
  try {
    const std::uintmax_t size = store.Files.Size(store.Path);
    if (size > kMostCharacters) {
      throw Failure(EFBIG, store.Path.string() + ": the file has " + std::to_string(size) +
                               " characters, which is above the limit of " + std::to_string(kMostCharacters));
    }
    // Here and not in a save, so that no position moves between a change and its save.
    std::string bytes = store.Files.Read(store.Path, kMostCharacters + 1);
    store.ReplaceText(WithBlanks(bytes));
    store.FileText = std::move(bytes);
  } catch (const Failure& failure) {
    throw Failure(failure.Number(), std::string("The configuration cannot be read: ") + failure.what());
  }
}

void SaveConfig(CfgStore& store) { ReplaceAndSave(store, store.CfgText); }

void ReplaceAndSave(CfgStore& store, std::string text) {
  std::string saved = CutBehindLastHeader(text);
  if (saved.empty()) {
    store.ReplaceText(std::move(text));
    return;
  }
  store.RequireRoom(saved.size());
  std::filesystem::path aside;
  std::unique_ptr<LockedFolder> folder;
  try {
    folder = ReplaceFile(store.Files, store.Path, saved,
                         [&](const std::filesystem::path& target, const std::string& old) {
                           aside = KeepOtherText(store, target, old);
                         });
  } catch (const Failure& failure) {
    // The other text is in its place still, and needs no copy.
    if (!aside.empty()) RemoveQuietly(store.Files, aside);
    throw Failure(failure.Number(), "The configuration was not saved, " + store.Path.string() +
                                        " is as it was: " + failure.what());
  }
  store.CfgText = std::move(saved);
  store.FileText = store.CfgText;
  if (!aside.empty()) store.KeptAside = aside;
  try {
    folder->Flush();
  } catch (const Failure& failure) {
    throw Failure(
        failure.Number(),
        store.Path.string() + " is saved, but a power cut may bring the old file back: " + failure.what());
  }
}

}  // namespace keplo
