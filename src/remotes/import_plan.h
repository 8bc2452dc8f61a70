#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "config/cfg_store.h"
#include "formats/remote.h"
#include "signal/raw/raw_signal.h"

namespace keplo {

/// A file of remotes that were read from it.
struct ImportedFile {
  std::string Path;
  std::vector<Remote> Remotes;
};

struct ImportWishes {
  std::string Section;    // an existing one that takes the keys; empty for new ones
  bool Shadowed = false;  // takes codes that begin another, or that another one begins
  /// The lengths of the raw commands of the text, of which one may be that of a key; may be null.
  const RawStore* Raw = nullptr;
  /// Which keys are looked at; without it all are.
  std::function<bool(const RemoteKey& key)> Wants;
};

/// What becomes of a key.
enum class KeyFate {
  Stored,    // a new command
  Known,     // its code is there already
  Shadowed,  // its code begins another, or another one begins it
  Skipped    // it cannot be stored
};

struct PlannedKey {
  std::string File, Remote;
  const RemoteKey* Key = nullptr;
  KeyFate Fate = KeyFate::Skipped;
  bool IsRaw = false;            // it keeps its lengths
  std::string RawDigits = {};    // of a raw command that it becomes
  std::string HeardDigits = {};  // of a code that the receiver makes of its lengths
  std::string SendAs = {};       // how that code is sent, see WithSendAs
  std::string Section, Name;  // of the command that it becomes, or of the one that has its code; else empty
  std::string Reason;         // why it was renamed or not stored; empty if there is nothing to tell

  /// The digits that were read; empty if there are none.
  std::string Digits() const { return Key->Coded ? Key->Coded->Digits : HeardDigits; }
  std::string Reference() const { return Name.empty() ? std::string() : Section + "&" + Name; }
};

/// An import as it would be: nothing is changed yet.
struct ImportPlan {
  std::vector<PlannedKey> Keys;       // in the order of the files
  std::vector<std::string> Sections;  // that are new, or the one that takes the keys
  std::string Text;                   // of the configuration with all of it
  std::vector<RawSignal> Raw;         // lengths of the raw commands among the keys
  std::size_t Needed = 0, Free = 0;   // characters

  bool Fits() const { return Needed <= Free; }
  std::size_t Count(KeyFate fate) const;
  /// Whether it has commands that the first analysis never hears: raw ones, RC6, and those of two frames.
  bool NeedsSecondLook() const;
};

/// Makes sections or commands of the keys of some files: one section for each remote, and one more for each
/// further way of sending that the remote has.
/// @param text of a configuration that is whole
/// @param files that live as long as the plan
/// @throws Failure if the section that is to take the keys cannot, or none can be added
ImportPlan PlanImport(const std::string& text, const std::vector<ImportedFile>& files,
                      const ImportWishes& wishes);

/// Saves a planned import, all of it at once.
/// @throws Failure as ReplaceAndSave
void StoreImport(CfgStore& store, ImportPlan plan);

}  // namespace keplo
