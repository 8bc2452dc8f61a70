#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/open_install.h"
#include "cli/reference.h"
#include "cli/remote_files.h"
#include "config/cfg_text.h"
#include "config/protocols.h"
#include "config/sections.h"
#include "program/app_path.h"
#include "remotes/stored_remote.h"
#include "typed_command.h"

namespace keplo::cli {

namespace {

struct ExportOptions {
  std::string Format, OutFile, AppPath;
  std::vector<std::string> Sections, Commands;
};

struct ConvertOptions {
  std::vector<std::string> Files;
  std::string From, To, OutFile;
};

/// The requested sections; by default all but Template.
std::vector<std::string> SectionsOf(const std::string& text, const ExportOptions& options) {
  std::vector<std::string> sections;
  for (const std::string& word : options.Sections)
    sections.push_back(RequireProtocol(text, word, options.AppPath));
  if (!sections.empty()) return sections;
  for (const std::string& name : ListProtocols(text)) {
    if (!IsTemplate(name)) sections.push_back(name);
  }
  return sections;
}

/// Whether a command is requested, by its name or as 'NEC&POWER'.
bool IsWanted(const ExportOptions& options, const std::string& section, std::string_view name) {
  return options.Commands.empty() ||
         std::any_of(options.Commands.begin(), options.Commands.end(), [&](const std::string& word) {
           const auto reference = SplitReference(word);
           return reference
                      ? EqualNoCase(reference->Protocol, section) && EqualNoCase(reference->Command, name)
                      : EqualNoCase(word, name);
         });
}

/// Reports requested commands that do not exist.
/// @return the exit code
int ReportMissing(const ExportOptions& options, const std::vector<Remote>& remotes) {
  int status = kDone;
  for (const std::string& word : options.Commands) {
    ExportOptions one;
    one.Commands = {word};
    const bool found = std::any_of(remotes.begin(), remotes.end(), [&](const Remote& remote) {
      return std::any_of(remote.Keys.begin(), remote.Keys.end(), [&](const RemoteKey& key) {
        return IsWanted(one, remote.Name, key.Name.value_or(""));
      });
    });
    if (found) continue;
    Tell("there is no command " + word + " in these sections; " + TypedCommand("commands", options.AppPath) +
         " lists them");
    status = kNoResult;
  }
  return status;
}

int Export(const ExportOptions& options) {
  const OpenedConfig config(options.AppPath);
  const std::string& text = config.Text();
  std::vector<Remote> remotes;
  for (const std::string& section : SectionsOf(text, options)) {
    const auto wants = [&](std::string_view name) { return IsWanted(options, section, name); };
    Remote remote;
    try {
      remote = RemoteOfSection(text, section, wants, &config.Mod.Store.Raw);
    } catch (const Failure& damaged) {
      throw Refused(damaged.what());
    }
    if (!remote.Keys.empty()) remotes.push_back(std::move(remote));
  }
  if (remotes.empty())
    throw Refused("there is no such command in these sections; " + TypedCommand("commands", options.AppPath) +
                  " lists them");
  const int status = WriteRemoteFile(options.Format, remotes, options.OutFile);
  return std::max(status, ReportMissing(options, remotes));
}

int Convert(const ConvertOptions& options) {
  LoadedRemotes loaded = LoadRemoteFiles(options.Files, options.From);
  std::vector<Remote> remotes;
  for (ImportedFile& file : loaded.Files) {
    std::move(file.Remotes.begin(), file.Remotes.end(), std::back_inserter(remotes));
  }
  if (remotes.empty()) return std::max(loaded.Status, kNoResult);
  return std::max(loaded.Status, WriteRemoteFile(options.To, remotes, options.OutFile));
}

std::vector<std::string> WritableFormats() {
  std::vector<std::string> names;
  for (const RemoteFormat& format : RemoteFormats()) {
    if (format.Write != nullptr) names.emplace_back(format.Name);
  }
  return names;
}

}  // namespace

void AddExportCommand(Command& root) {
  Command command = root.Sub("export", "Write learned commands as a file of remotes");
  const auto options = std::make_shared<ExportOptions>();
  command.Choice("--format", options->Format, WritableFormats(), "Format of the file").Required();
  command.Words("--section", options->Sections, "Only this section of keplo.cfg; may be given again");
  command.Words("--command", options->Commands,
                "Only this command, by its name or as 'NEC&POWER'; may be given again");
  command.Word("--out", options->OutFile, "Write to this file, not to standard output");
  AddAppPathOption(command, options->AppPath);
  command.Examples({"keplo export --format flipper --section NEC --out tv.ir"});
  command.Runs([options] { return Export(*options); });
}

void AddConvertCommand(Command& root) {
  Command command = root.Sub("convert", "Turn files of remotes into another format");
  const auto options = std::make_shared<ConvertOptions>();
  command.Words("FILE", options->Files, "Files of remotes; - for standard input").Required();
  command.Choice("--to", options->To, WritableFormats(), "Format to write").Required();
  command.Word("--format", options->From, "Format of the files, which is else told from their content");
  command.Word("--out", options->OutFile, "Write to this file, not to standard output");
  command.Examples({"keplo convert lircd.conf --to flipper --out tv.ir"});
  command.Runs([options] { return Convert(*options); });
}

}  // namespace keplo::cli
