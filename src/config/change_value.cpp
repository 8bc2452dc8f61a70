#include "config/change_value.h"

namespace keplo {

std::optional<std::string> WithValueAt(const std::string& text, int position, std::string_view value) {
  const int afterCr = FindNoCase("\r", text, position);
  if (afterCr == kNowhere) return std::nullopt;
  // If an LF comes first, the line has no CR and the lines below would be removed with it.
  const int lf = SeekForward(text, position, '\n');
  if (lf != kNowhere && lf < afterCr - 1) return std::nullopt;
  const std::string line = " " + std::string(Trimmed(value));
  return InsertText(RemoveText(text, position, afterCr - 2), line, position);
}

bool ReplaceValueAt(CfgStore& store, int position, std::string_view value) {
  std::optional<std::string> changed = WithValueAt(store.CfgText, position, value);
  if (!changed) return false;
  store.ReplaceText(std::move(*changed));
  return true;
}

std::optional<std::string> WithGeneralValue(const std::string& text, std::string_view key,
                                            std::string_view value) {
  const int section = FindNoCase("[General]", text, 1);
  return WithValueAt(text, FindNoCase(std::string(key) + "=", text, section), value);
}

bool SetGeneralValue(CfgStore& store, std::string_view key, std::string_view value) {
  std::optional<std::string> changed = WithGeneralValue(store.CfgText, key, value);
  if (!changed) return false;
  ReplaceAndSave(store, std::move(*changed));
  return true;
}

}  // namespace keplo
