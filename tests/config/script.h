#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "config/change_value.h"
#include "config/config_builder.h"
#include "config/learn.h"
#include "config/protocol_edit.h"

namespace keplo::tests {

/// Changes a store as described by words separated by bars, such as "add|NEC|G1010|POWER" or
/// "remove|NEC|POWER".
/// @return why it was refused, in words of a user or of this script
inline std::string Do(CfgStore& store, const std::string& step) {
  using Step = std::function<std::string(CfgStore&, const Texts&)>;
  const auto done = [](bool isDone) { return std::string(isDone ? "" : "not done"); };
  static const std::map<std::string, Step> kSteps = {
      {"add", [](auto& to, auto& w) { return RefusalText(AddCommand(to, w[1], w[2], w[3])); }},
      {"addWhole",
       [](auto& to, auto& w) { return RefusalText(AddCommand(to, w[1], w[2], w[3], Analysis::Second)); }},
      {"rename", [](auto& to, auto& w) { return RefusalText(RenameCommand(to, w[1], w[2], w[3])); }},
      {"delete", [](auto& to, auto& w) { return RefusalText(DeleteCommand(to, w[1], w[2])); }},
      {"addProtocol",
       [](auto& to, auto& w) {
         return RefusalText(AddProtocol(to, {w[1], "", 1, {550, 0, "01", "011", "1", 0, ""}}));
       }},
      {"deleteProtocol", [](auto& to, auto& w) { return RefusalText(DeleteProtocol(to, w[1])); }},
      {"set", [=](auto& to, auto& w) { return done(SetGeneralValue(to, w[1], w[2])); }},
      {"save", [](auto& to, auto&) { return SaveConfig(to), std::string(); }},
      // What a window does, with a protocol and a command selected.
      {"store", [=](auto& to, auto& w) { return done(StoreCommand(to, w[1], w[2], w[3])); }},
      {"select",
       [=](auto& to, auto& w) {
         return done(ReplaceValueAt(to, FindNoCase("PROTOCOL=", to.CfgText, 1), w[1]));
       }},
      {"drop", [](auto& to, auto&) { return DropPlaceholder(to), std::string(); }},
      {"check", [](auto& to, auto&) { return RefusalText(CheckDelete(to)); }},
      {"remove", [=](auto& to, auto&) { return done(RemoveCommand(to)); }},
  };
  const Texts words = Parts(step);
  if (words[0] == "drop" || words[0] == "check" || words[0] == "remove") {
    store.CurProtocol = words[1];
    store.CurCommand = words[2];
  }
  return kSteps.at(words[0])(store, words);
}

}  // namespace keplo::tests
