#include "cli/open_map.h"

#include "cli/app_path.h"

namespace keplo::cli {

OpenConfig::OpenConfig(const std::string& appPathOption) : Mod(RequireInstall(appPathOption), Files) {
  LoadConfig(Mod.Store);
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
}

}  // namespace keplo::cli
