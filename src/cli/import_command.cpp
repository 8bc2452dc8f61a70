#include <algorithm>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_install.h"
#include "cli/press_table.h"
#include "cli/reference.h"
#include "cli/remote_files.h"
#include "program/app_path.h"
#include "program/json_line.h"
#include "program/printable.h"
#include "remotes/import_plan.h"
#include "remotes/keys_named.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

struct ImportOptions {
  std::vector<std::string> Files;
  std::string Format, Section, Keys, AppPath;
  bool DryRun = false, Shadowed = false, Json = false;
};

std::string_view KindOf(const PlannedKey& key) {
  if (key.Fate == KeyFate::Skipped) return "skipped";
  return key.IsRaw ? "raw" : "code";
}

template <typename Value>
nlohmann::ordered_json OrNull(const std::optional<Value>& value) {
  return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
}

nlohmann::ordered_json TextOrNull(const std::string& text) {
  return text.empty() ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(text);
}

nlohmann::ordered_json Describe(const PlannedKey& planned) {
  const RemoteKey& key = *planned.Key;
  return {{"file", planned.File},
          {"line", key.Line},
          {"remote", planned.Remote},
          {"key", OrNull(key.Name)},
          {"name", TextOrNull(planned.Name)},
          {"section", TextOrNull(planned.Section)},
          {"kind", KindOf(planned)},
          {"code", TextOrNull(planned.IsRaw ? std::string() : planned.Digits())},
          {"protocol", OrNull(key.Protocol)},
          {"carrier", OrNull(key.Carrier)},
          {"repeat", NameOf(key.Coded ? key.Coded->Again.Kind : RepeatKind::Unknown)},
          {"reason", TextOrNull(planned.Reason)}};
}

void PrintKey(const PlannedKey& planned) {
  if (planned.Fate != KeyFate::Stored) {
    const std::string file = planned.File == "-" ? "standard input" : planned.File;
    const std::string& own = planned.Key->File;
    Tell(
        Complaint{own.empty() ? file : own, planned.Key->Line, planned.Key->Name.value_or(""), planned.Reason}
            .Message());
    return;
  }
  std::cout << Printable(planned.Reference()) << "\tG"
            << (planned.RawDigits.empty() ? planned.Digits() : planned.RawDigits);
  if (!planned.Reason.empty()) std::cout << '\t' << Printable(planned.Reason);
  std::cout << '\n';
}

std::string FateText(std::size_t count, const char* what) {
  return count == 0 ? std::string() : ", " + std::to_string(count) + " " + what;
}

void PrintSummary(const ImportPlan& plan, bool dryRun) {
  const std::size_t stored = plan.Count(KeyFate::Stored);
  std::string sections;
  for (const std::string& section : plan.Sections) sections += (sections.empty() ? "" : ", ") + section;
  std::cout << stored << (stored == 1 ? " command" : " commands")
            << (dryRun ? " would be imported" : " imported");
  if (stored > 0) std::cout << " into " << Printable(sections);
  std::cout << FateText(plan.Count(KeyFate::Known), "known")
            << FateText(plan.Count(KeyFate::Shadowed), "shadowed")
            << FateText(plan.Count(KeyFate::Skipped), "skipped") << '\n';
  if (dryRun && !plan.Fits()) {
    std::cout << "They need " << plan.Needed << " characters, and keplo.cfg has " << plan.Free << " free\n";
  }
}

ImportPlan MakePlan(const CfgStore& store, const std::vector<ImportedFile>& files,
                    const ImportOptions& options) try {
  ImportWishes wishes;
  if (!options.Section.empty())
    wishes.Section = RequireProtocol(store.CfgText, options.Section, options.AppPath);
  wishes.Shadowed = options.Shadowed;
  wishes.Raw = &store.Raw;
  if (!options.Keys.empty()) wishes.Wants = KeysNamed(options.Keys);
  ImportPlan plan = PlanImport(store.CfgText, files, wishes);
  if (plan.Keys.empty() && !options.Keys.empty())
    throw Refused("no key has a name of --keys " + options.Keys);
  return plan;
} catch (const Refused&) {
  throw;
} catch (const Failure& refused) {
  throw Refused(refused.what());
}

void Store(CfgStore& store, const ImportPlan& plan) {
  if (!plan.Fits()) {
    throw NotWritten(1, "Nothing was imported: it needs " + std::to_string(plan.Needed) +
                            " characters, and keplo.cfg has " + std::to_string(plan.Free) +
                            " free. Take fewer keys by --keys, or delete protocols that are not needed.");
  }
  if (plan.Count(KeyFate::Stored) > 0) StoreImport(store, plan);
}

/// Warns of names without a key, which may be mistyped.
void WarnOfUnusedNames(const std::string& list, const ImportPlan& plan) {
  for (std::size_t begin = 0; begin < list.size();) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    const std::string name = list.substr(begin, end - begin);
    const auto wants = KeysNamed(name);
    if (!Trimmed(name).empty() && std::none_of(plan.Keys.begin(), plan.Keys.end(),
                                               [&](const PlannedKey& key) { return wants(*key.Key); }))
      Tell("no key has a name of --keys " + std::string(Trimmed(name)));
    begin = end + 1;
  }
}

int Import(const ImportOptions& options) {
  OpenedConfig config(options.AppPath);
  config.RequireWhole();
  const LoadedRemotes loaded = LoadRemoteFiles(options.Files, options.Format);
  ImportPlan plan;
  if (options.DryRun) {
    plan = MakePlan(config.Mod.Store, loaded.Files, options);
  } else {
    config.Change([&](CfgStore& store) {
      plan = MakePlan(store, loaded.Files, options);
      Store(store, plan);
    });
  }
  for (const PlannedKey& key : plan.Keys) {
    if (options.Json) {
      std::cout << JsonLine(Describe(key)) << '\n';
    } else {
      PrintKey(key);
    }
  }
  WarnOfUnusedNames(options.Keys, plan);
  if (plan.NeedsSecondLook() && AnalysisOf(config) == Analysis::First) {
    Tell("some of these commands are heard with the second look alone; " +
         TypedCommand("settings ANALYSIS 1", options.AppPath) + " turns it on");
  }
  if (!options.Json && !loaded.Files.empty()) PrintSummary(plan, options.DryRun);
  const bool all = plan.Count(KeyFate::Skipped) + plan.Count(KeyFate::Shadowed) == 0 && !plan.Keys.empty();
  return std::max(loaded.Status, all ? kDone : kNoResult);
}

}  // namespace

void AddImportCommand(Command& root) {
  Command command = root.Sub("import", "Store the keys of remotes that others have recorded or described");
  const auto options = std::make_shared<ImportOptions>();
  command.Words("FILE", options->Files, "Files of remotes; - for standard input").Required();
  command.Word("--format", options->Format,
               "Format of the files, which is else told from their content: " + FormatNames());
  command.Word("--section", options->Section,
               "Put the keys into this section of keplo.cfg, not into new ones");
  command.Word("--keys", options->Keys, "Only keys of these names, as 'POWER,VOL*'");
  command.Flag("--dry-run", options->DryRun, "Tell what would become of the keys, and store none");
  command.Flag("--shadowed", options->Shadowed,
               "Take codes that begin another one, or with another one, as well");
  command.Flag("--json", options->Json, "One JSON object a key");
  AddAppPathOption(command, options->AppPath);
  command.Examples(
      {"keplo import Samsung.ir", "keplo import lircd.conf --keys 'KEY_POWER,KEY_VOL*' --dry-run"});
  command.Runs([options] { return Import(*options); });
}

}  // namespace keplo::cli
