#include "cli/remote_files.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <iterator>

#include "cli/outcome.h"
#include "cli/write_file.h"
#include "program/arguments.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

constexpr std::string_view kOutput = "-";

void RequireFormat(const std::string& name) try {
  RemoteFormatNamed(name);
} catch (const FormatError& unknown) {
  throw UsageError(unknown.what());
}

/// Reports keys without a signal, with their reasons.
/// @return whether there are none
bool ReportSkipped(const std::vector<Remote>& remotes) {
  bool all = true;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      if (key.Coded || !key.Lengths.empty()) continue;
      Tell(Complaint{key.File.empty() ? remote.Name : key.File, key.Line, key.Name.value_or(""), key.Skipped}
               .Message());
      all = false;
    }
  }
  return all;
}

/// @throws Refused if the text contains control characters and standard output is a terminal, which would
/// obey them
void RequireHarmless(std::string_view text) {
  if (isatty(STDOUT_FILENO) == 0) return;
  for (; !text.empty(); text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1)) {
    std::string line(text.substr(0, text.find('\n')));
    if (line.ends_with('\r')) line.pop_back();
    std::replace(line.begin(), line.end(), '\t', ' ');
    if (Printable(line) == line) continue;
    throw Refused(
        "The file holds control characters, which a terminal would obey; write it to a file with --out FILE");
  }
}

}  // namespace

LoadedRemotes LoadRemoteFiles(const std::vector<std::string>& files, const std::string& format) {
  if (!format.empty()) RequireFormat(format);
  LoadedRemotes loaded;
  for (const std::string& path : files) {
    try {
      RemoteFile file = LoadRemotes(path, format);
      for (const Complaint& complaint : file.Complaints) Tell(complaint.Message());
      if (!file.Complaints.empty()) loaded.Status = std::max(loaded.Status, kNoResult);
      loaded.Files.push_back({path, std::move(file.Remotes)});
    } catch (const FormatError& unreadable) {
      Tell(unreadable.what());
      loaded.Status = kUsageError;
    }
  }
  return loaded;
}

int WriteRemoteFile(const std::string& format, const std::vector<Remote>& remotes, const std::string& out) {
  std::vector<Complaint> complaints;
  const std::string text = WriteRemotes(format, remotes, complaints);
  for (const Complaint& complaint : complaints) Tell(complaint.Message());
  const bool keysLeftOut = std::any_of(complaints.begin(), complaints.end(), [](const Complaint& complaint) {
    return !complaint.Key.empty() || !complaint.File.empty();
  });
  const bool all = ReportSkipped(remotes) && !keysLeftOut;
  if (text.empty()) throw Refused("there is nothing to write: none of the keys can be said in this format");
  if (out.empty() || out == kOutput) {
    RequireHarmless(text);
    std::cout << text;
  } else {
    Write([&] { WriteFile(out, text); });
  }
  return all ? kDone : kNoResult;
}

std::string FormatNames() {
  std::string names;
  for (const RemoteFormat& format : RemoteFormats())
    names.append(names.empty() ? "" : ", ").append(format.Name);
  return names;
}

}  // namespace keplo::cli
