#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "config/cfg_store.h"
#include "config/commands.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "config/protocols.h"
#include "config/read_settings.h"
#include "config/values.h"
#include "failure.h"
#include "no_files.h"

/// Store operations on an arbitrary text, with a name and a code out of the same bytes: whatever the text is,
/// they stay within it, and it stays within its limit.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string_view word = input.substr(0, input.find('\n'));
  const std::string text(input.substr(std::min(word.size() + 1, input.size())));
  if (text.size() > keplo::kMostCharacters) return 0;

  keplo::NoFiles files;
  keplo::CfgStore store("keplo.cfg", files);
  store.CfgText = text;
  keplo::Settings settings;
  keplo::ReadSettings(store, settings);
  keplo::LookupCommand(store, word, 2);
  keplo::FindCommand(text, word, 100);
  for (const std::string& protocol : keplo::ListProtocols(text)) {
    keplo::ProtocolParams params;
    std::int16_t kind = 0;
    keplo::LoadProtocolParams(text, protocol, params, kind);
    keplo::ListCommands(text, protocol);
    store.CurProtocol = protocol;
    store.CurCommand = word;
    keplo::CountCommands(store);
  }
  try {
    keplo::ReplaceValueAt(store, static_cast<int>(word.size()), word);
    keplo::SetGeneralValue(store, "PROCDELAY", word);
    keplo::AddCommand(store, store.CurProtocol, "G" + std::string(word), "FUZZ");
    keplo::DeleteCommandLine(store);
    keplo::SaveConfig(store);
  } catch (const keplo::Failure&) {
    // A text that would grow beyond its limit is refused.
  }
  if (store.CfgText.size() > keplo::kMostCharacters) __builtin_trap();
  return 0;
}
