#pragma once

#include <string>
#include <utility>
#include <vector>

#include "config/commands.h"
#include "formats/families.h"
#include "formats/remote.h"
#include "remotes/import_plan.h"

namespace keplo::tests {

/// A key of a protocol.
inline RemoteKey Key(const std::string& name, const std::string& digits, const char* family = "NEC") {
  RemoteKey key;
  key.Name = name;
  key.Coded = SignalOf(FamilyNamed(family), digits);
  key.Carrier = FamilyNamed(family).Carrier;
  return key;
}

/// Digits that tell a number, as many as a protocol has.
inline std::string Digits(unsigned number, int count = 32) {
  return "1" + DigitText().High((number * std::uint64_t{2654435761U}) & 0xFFFF'FFFFU, count - 1).Take();
}

/// A file with one remote.
inline std::vector<ImportedFile> File(const std::string& name, std::vector<RemoteKey> keys) {
  return {{name + ".ir", {{name, std::move(keys)}}}};
}

/// A remote whose keys have these names and codes of their own.
inline std::vector<ImportedFile> Named(const std::vector<std::string>& names) {
  std::vector<RemoteKey> keys;
  for (const std::string& name : names)
    keys.push_back(Key(name, Digits(static_cast<unsigned>(keys.size()) + 1)));
  return File("Mine", std::move(keys));
}

/// The names of a section's commands, with blanks between.
inline std::string Commands(const std::string& text, const std::string& section) {
  std::string names;
  for (const LearnedCommand& command : ListCommands(text, section)) names += " " + command.Name;
  return names.substr(names.empty() ? 0 : 1);
}

}  // namespace keplo::tests
