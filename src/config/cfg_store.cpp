#include "config/cfg_store.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "config/check_config.h"
#include "config/key_table.h"
#include "config/merge_changes.h"
#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "failure.h"
#include "typed_command.h"

namespace keplo {

namespace {

/// The text as it is written to the file, with the closing header as its last line. Empty without a header.
std::string CutAfterLastHeader(std::string text) {
  text.erase(text.rfind(']') + 1);
  return text.empty() ? text : text.append("\r\n");
}

/// The key that a line begins with; empty if there is none. Keys that may be missing are left out: they are
/// read with or without a blank.
std::string_view KeyOf(std::string_view line) {
  const auto begins = [&](std::string_view key) { return EqualNoCase(line.substr(0, key.size()), key); };
  for (const SettingKey& key : kSettingKeys) {
    if (!key.Late && begins(key.Search)) return key.Search;
  }
  if (begins(kGenericKey)) return kGenericKey;
  for (const ParameterKey& key : kParameterKeys) {
    if (begins(key.Search)) return key.Search;
  }
  return {};
}

/// Inserts the blank after a key's = where a hand-edited file lacks it. A minus sign may take its place.
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

/// The current contents of the file; none if there is no file.
std::optional<std::string> ReadFileNow(const CfgStore& store) try {
  return store.Files.Read(store.Path, kMostCharacters + 1);
} catch (const Failure& failure) {
  if (failure.Number() != ENOENT) throw;
  return std::nullopt;
}

Failure NotSaved(const CfgStore& store, const Failure& failure) {
  return {failure.Number(),
          "The configuration was not saved, " + store.Path.string() + " is as it was: " + failure.what()};
}

/// A text about to be saved.
struct Save {
  std::string Text;
  std::optional<std::string> Known;       // the bytes of the file that Text takes into account
  std::optional<std::string> Other = {};  // another program's text that was merged into Text
  bool IsDone = false;                    // there is nothing to write
  std::optional<std::string> Found = {};  // the bytes of the file when the save was prepared
};

/// Thrown if another program has saved since a save was prepared. It has to be prepared again, since the
/// lengths of raw commands that it writes depend on the text that it replaces.
struct WrittenMeanwhile {};

/// Merges the changes of another program into a text unless they conflict with it.
Save PrepareSave(const CfgStore& store, std::string text) try {
  Save save{std::move(text), store.FileText};
  if (!save.Known) return save;
  const std::optional<std::string> now = ReadFileNow(store);
  if (now && now != save.Known && !store.RefusesOtherText) {
    const bool ownChanges = save.Text != store.SavedText;
    std::string other = WithBlanks(*now);
    std::optional<std::string> merged = MergeChanges(store.SavedText, save.Text, other);
    if (merged && merged->size() <= kMostCharacters) {
      save = {std::move(*merged), now, std::move(other)};
    } else {
      save.IsDone = !ownChanges;
    }
  }
  if (now && now == save.Known && CutAfterLastHeader(save.Text) == *now) save.IsDone = true;
  save.Found = now;
  return save;
} catch (const Failure& failure) {
  throw NotSaved(store, failure);
}

/// Writes the file.
/// @param aside receives the path of a copy of another program's text, which would otherwise be lost
/// @throws WrittenMeanwhile, with nothing changed, unless this is the last try
std::unique_ptr<LockedFolder> WriteFile(const CfgStore& store, const Save& save, const std::string& content,
                                        bool lastTry, std::filesystem::path& aside) try {
  return ReplaceFile(store.Files, store.Path, content,
                     [&](const std::filesystem::path& target, const std::string& found) {
                       if (!save.Known || found == *save.Known) return;
                       if (store.RefusesOtherText) throw ChangedElsewhere(target);
                       if (found != save.Found && !lastTry) throw WrittenMeanwhile();
                       aside = SaveConflictCopy(store.Files, target, found);
                     });
} catch (const Failure& failure) {
  // The other text is still in the file and needs no copy.
  if (!aside.empty()) RemoveQuietly(store.Files, aside);
  throw NotSaved(store, failure);
}

RawChange PrepareRaw(CfgStore& store, const Save& save, const std::string& content) try {
  // Not SavedText: the other program has already written and removed the lengths of its own changes.
  return {store, save.Found.value_or(store.SavedText), content};
} catch (const Failure& failure) {
  throw NotSaved(store, failure);
}

/// Merges the text of another program into WithoutChange.
void MergeIntoWithoutChange(CfgStore& store, const std::string& other) {
  if (store.WithoutChange) store.WithoutChange = MergeChanges(store.SavedText, *store.WithoutChange, other);
}

void AdoptSavedText(CfgStore& store, std::string text, const std::optional<std::string>& other) {
  if (other) {
    MergeIntoWithoutChange(store, *other);
    store.MergedOtherText = true;
  }
  store.SavedText = text;
  store.CfgText = std::move(text);
  RefreshRaw(store);
}

void SaveOnce(CfgStore& store, std::string text, bool lastTry) {
  Save save = PrepareSave(store, std::move(text));
  std::string content = CutAfterLastHeader(save.Text);
  if (content.empty()) {
    store.ReplaceText(std::move(save.Text));
    return;
  }
  store.RequireSpace(content.size());
  if (save.IsDone) {
    if (save.Known == content) AdoptSavedText(store, std::move(content), save.Other);
    if (save.Other) store.FileText = std::move(save.Known);
    return;
  }
  std::filesystem::path aside;
  RawChange raw = PrepareRaw(store, save, content);
  const std::unique_ptr<LockedFolder> folder = WriteFile(store, save, content, lastTry, aside);
  store.FileText = content;
  store.ReadFrom.reset();
  AdoptSavedText(store, std::move(content), save.Other);
  if (!aside.empty()) store.ConflictCopy = aside;
  try {
    folder->Flush();
  } catch (const Failure& failure) {
    throw Failure(
        failure.Number(),
        store.Path.string() + " is saved, but a power cut may bring the old file back: " + failure.what());
  }
  raw.DropLost();
}

constexpr const char* kTakeOut = ". Take out commands or protocols that are not needed.";

/// What to do about a file that cannot be read.
std::string AdviceOnRead(const CfgStore& store, int error) {
  if (error == EFBIG) return "";  // the failure already says what to do
  if (error != ENOENT) return ". Make it a file that this program may read, or put a backup in its place.";
  return ". Put a backup in its place, or bring the one of a first install with: " +
         TypedCommand("install", FolderOf(store.Path).string());
}

}  // namespace

void CfgStore::RequireSpace(std::size_t length) const {
  if (length <= kMostCharacters) return;
  throw Failure(EFBIG, Path.string() + " would be of " + std::to_string(length) +
                           " characters; the limit is " + std::to_string(kMostCharacters) + kTakeOut);
}

CfgStore::CfgStore(std::filesystem::path path, std::unique_ptr<FileSystem> files)
    : CfgStore(std::move(path), *files) {
  ownFiles_ = std::move(files);
}

CfgStore::CfgStore(std::filesystem::path path)
    : CfgStore(std::move(path), std::make_unique<PosixFileSystem>()) {}

void CfgStore::ReplaceText(std::string text) {
  RequireSpace(text.size());
  CfgText = std::move(text);
}

void LoadConfig(CfgStore& store) {
  try {
    const std::uintmax_t size = store.Files.Size(store.Path);
    if (size > kMostCharacters) {
      throw Failure(EFBIG, store.Path.string() + ": the file has " + std::to_string(size) +
                               " characters, which is above the limit of " + std::to_string(kMostCharacters) +
                               kTakeOut);
    }
    // Taken before the read: a change right after it is then noticed.
    const std::optional<FileIdentity> identity = store.Files.Identity(store.Path);
    std::string bytes = store.Files.Read(store.Path, kMostCharacters + 1);
    // Blanks are inserted here and not by a save, so that positions do not move between a change and its
    // save.
    store.ReplaceText(WithBlanks(bytes));
    store.SavedText = store.CfgText;
    store.FileText = std::move(bytes);
    store.ReadFrom = identity;
    RefreshRaw(store);
  } catch (const Failure& failure) {
    const std::string advice = AdviceOnRead(store, failure.Number());
    throw Failure(failure.Number(),
                  std::string("The configuration cannot be read: ") + failure.what() + advice);
  }
}

bool HasFileChanged(const CfgStore& store) {
  return !store.ReadFrom || store.Files.Identity(store.Path) != store.ReadFrom || HaveRawFilesChanged(store);
}

Reload ReloadConfig(CfgStore& store) {
  CfgStore read(store.Path, store.Files);
  store.ReadFrom = store.Files.Identity(store.Path);
  RefreshRaw(store);  // only lengths may have changed
  LoadConfig(read);
  if (read.FileText == store.FileText) return Reload::NothingNew;
  if (const std::string damage = DamageOf(read); !damage.empty()) {
    throw Failure(EINVAL, "Another program has changed the configuration, which is not taken in: " + damage);
  }
  // Without own changes nothing is merged: the text read at the start may be damaged.
  const bool unchanged = store.CfgText == store.SavedText;
  const std::optional<std::string> merged =
      unchanged ? read.CfgText : MergeChanges(store.SavedText, store.CfgText, read.CfgText);
  if (!merged || merged->size() > kMostCharacters) return Reload::Contradicts;
  const bool changed = *merged != store.CfgText;
  MergeIntoWithoutChange(store, read.CfgText);
  store.CfgText = *merged;
  RefreshRaw(store);
  store.SavedText = std::move(read.CfgText);
  store.FileText = std::move(read.FileText);
  if (!changed) return Reload::NothingNew;
  store.MergedOtherText = true;
  return Reload::TakenIn;
}

void SaveConfig(CfgStore& store) { ReplaceAndSave(store, store.CfgText); }

void ReplaceAndSave(CfgStore& store, std::string text) {
  constexpr int kTries = 20;
  for (int tries = 1; tries < kTries; ++tries) {
    try {
      return SaveOnce(store, text, false);
    } catch (const WrittenMeanwhile&) {
      continue;
    }
  }
  SaveOnce(store, std::move(text), true);
}

}  // namespace keplo
