#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "doubles/expect.h"
#include "doubles/temp_folder.h"

namespace keplo::tests {

struct Ran {
  int Status = 0;
  std::string Out, Err;
};

/// Runs a shell command to its end.
inline Ran RunShell(const std::string& command) {
  const TempFolder folder;
  const std::string complete = command + " 2>'" + (folder.Path() / "err").string() + "'";
  Ran ran;
  FILE* pipe = popen(complete.c_str(), "r");
  char part[4096];
  while (const std::size_t length = fread(part, 1, sizeof part, pipe)) ran.Out.append(part, length);
  const int status = pclose(pipe);
  ran.Status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  ran.Err = folder.Read("err");
  return ran;
}

/// Runs the real keplo program.
inline Ran RunKeplo(const std::string& words) { return RunShell("'" KEPLO_PROGRAM "' " + words); }

/// A path as a further word of a shell command.
inline std::string Quoted(const std::filesystem::path& path) { return " '" + path.string() + "'"; }

/// An application path with a first install.
class Install {
 public:
  Install() { RunKeplo("install" + Option()); }

  std::string Option() const { return " --app-path" + Quoted(folder_.Path()); }
  std::filesystem::path File(const std::string& name) const { return folder_.Path() / name; }
  std::string Config() const { return folder_.Read("keplo.cfg"); }
  std::filesystem::path Write(const std::string& name, const std::string& content) const {
    return folder_.Write(name, content);
  }
  Ran Run(const std::string& words) const { return RunKeplo(words + Option() + " </dev/null"); }

  /// A made-up press as a further word of a command.
  std::string Press(const std::string& name, const std::string& synth) const {
    RunKeplo("synth " + synth + " >" + Quoted(File(name)));
    return Quoted(File(name));
  }

  /// Makes keplo.cfg longer, up to some bytes below its limit.
  std::string FillConfig(std::size_t bytesLeft) const {
    std::string full = Config();
    full.insert(full.find("[NEC]"), std::string(32'765 - bytesLeft - full.size(), '#') + "\r\n");
    Write("keplo.cfg", full);
    return full;
  }

 private:
  TempFolder folder_;
};

/// A command, its exit code, and parts of its output on either stream.
struct Told {
  std::string Words;
  int Status = 0;
  Texts Parts;
};

/// Runs commands one after the other.
inline void ExpectTold(const Install& install, const std::vector<Told>& commands) {
  for (const Told& command : commands) {
    const Ran ran = install.Run(command.Words);
    EXPECT_EQ(ran.Status, command.Status) << command.Words << ": " << ran.Out << ran.Err;
    for (const std::string& part : command.Parts) {
      ExpectPart(command.Words + ": " + ran.Out + ran.Err, part);
    }
  }
}

inline std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

}  // namespace keplo::tests
