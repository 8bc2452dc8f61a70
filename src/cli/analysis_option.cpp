#include "cli/analysis_option.h"

#include "config/read_settings.h"

namespace keplo::cli {

void AddAnalysisOption(Command& command, std::string& name) {
  command.Choice(
      "--analysis", name,
      {std::string(AnalysisName(Analysis::First)), std::string(AnalysisName(Analysis::Second))},
      "Read with the first analysis or the second look; without it as the keplo.cfg of --app-path says, "
      "and with the second look without that");
}

Analysis AnalysisNamed(std::string_view name) {
  return name == AnalysisName(Analysis::First) ? Analysis::First : Analysis::Second;
}

Analysis AnalysisOf(const OpenConfig& config) {
  Settings settings;
  ReadSettings(config.Mod.Store, settings);
  return settings.Analysis;
}

std::string_view WordOf(Analysis analysis) {
  return analysis == Analysis::First ? "first analysis" : "second look";
}

}  // namespace keplo::cli
