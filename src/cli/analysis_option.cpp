#include "cli/analysis_option.h"

#include "config/read_settings.h"

namespace keplo::cli {

void AddAnalysisOption(CLI::App& command, std::optional<Analysis>& analysis) {
  const auto take = [&analysis](const std::string& name) {
    analysis = name == AnalysisName(Analysis::First) ? Analysis::First : Analysis::Second;
  };
  command
      .add_option_function<std::string>(
          "--analysis", take,
          "Read with the first analysis or the second look; without it as the keplo.cfg of --app-path says, "
          "and with the second look without that")
      ->check(CLI::IsMember(
          {std::string(AnalysisName(Analysis::First)), std::string(AnalysisName(Analysis::Second))}));
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
