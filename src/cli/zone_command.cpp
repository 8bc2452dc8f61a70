#include <cstdint>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "cli/commands.h"
#include "cli/live_line.h"
#include "cli/open_install.h"
#include "program/app_path.h"
#include "program/line_options.h"
#include "signal/zone_link.h"

namespace keplo::cli {

namespace {

struct ZoneOptions {
  std::string AppPath;
  std::optional<std::int32_t> Port;
  std::optional<std::int16_t> Zone;  // to select
};

int UseZone(const ZoneOptions& options) {
  OpenedConfig config(options.AppPath);
  LiveLine live(config.Mod, options.Port);
  if (!options.Zone) {
    const std::int16_t zone = QueryZone(live.Line());
    if (zone == kNoZone) throw Refused("The zone hardware at " + live.Name() + " does not answer.");
    std::cout << "zone " << zone << '\n';
    return kDone;
  }
  const std::string zone = "zone " + std::to_string(*options.Zone);
  if (!SendZone(live.Line(), *options.Zone)) {
    throw Refused("The zone hardware at " + live.Name() + " did not confirm " + zone + ".");
  }
  std::cout << zone << " selected\n";
  return kDone;
}

}  // namespace

void AddZoneCommand(Command& root) {
  Command command =
      root.Sub("zone", "Ask the zone hardware where the last command came from, or select a zone");
  const auto options = std::make_shared<ZoneOptions>();
  command.Number("ZONE", options->Zone, "Zone for the next command that is sent", {1, 8});
  AddPortOption(command, options->Port);
  AddAppPathOption(command, options->AppPath);
  command.Examples({"keplo zone", "keplo zone 3"});
  command.Runs([options] { return UseZone(*options); });
}

}  // namespace keplo::cli
