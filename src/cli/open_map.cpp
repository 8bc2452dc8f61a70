#include "cli/open_map.h"

#include <iostream>
#include <utility>

#include "cli/commands.h"
#include "config/check_config.h"
#include "program/app_path.h"

namespace keplo::cli {

OpenConfig::OpenConfig(const std::string& appPathOption) : Mod(RequireInstall(appPathOption), Files) {
  Mod.Store.RefusesOtherText = true;
  LoadConfig(Mod.Store);
  if (const std::string damage = CheckConfig(Mod.Store); !damage.empty()) {
    std::cerr << "keplo: " << damage << '\n';
  }
}

void OpenConfig::RequireWhole() const {
  if (!CheckConfig(Mod.Store).empty()) throw Failure(1, "Nothing was changed, since the file is damaged.");
}

int AmongOthers(const std::function<int()>& command) {
  constexpr int kTries = 50;  // each of which somebody else has spoiled by a save of his own
  for (int tries = 1; tries < kTries; ++tries) {
    try {
      return command();
    } catch (const ChangedElsewhere&) {
      continue;
    }
  }
  return command();
}

void ChangeAmongOthers(CfgStore& store, const std::function<void()>& change) {
  bool stale = false;
  AmongOthers([&] {
    if (std::exchange(stale, true)) LoadConfig(store);
    change();
    return kDone;
  });
}

OpenMap::OpenMap(const std::string& appPathOption)
    : Database(ResolveAppPath(appPathOption), Clock), Events(Database, Clock) {
  Events.TriggerInputErrorCondition = [this](HostErrorRecord& record, bool&) {
    failure_ = record.ErrorDescription;
  };
  if (!Events.Initialise(List)) {
    if (failure_.empty()) failure_ = Database.ErrorDetails().ErrorDescription;
    throw Failure(1, "The event map cannot be loaded: " + failure_);
  }
  if (!failure_.empty()) std::cerr << "keplo: " << std::exchange(failure_, "") << '\n';
}

}  // namespace keplo::cli
