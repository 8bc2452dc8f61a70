#include "cli/teach.h"

#include <iostream>
#include <string_view>
#include <vector>

#include "cli/commands.h"
#include "cli/index_file.h"
#include "cli/open_map.h"
#include "config/learn.h"

namespace keplo::cli {

namespace {

struct Tally {
  int Learned = 0;
  int Refused = 0;
};

void TellRefused(const CodeToLearn& code, const std::string& why) {
  std::cerr << code.Place << ": " << code.Protocol << '&' << code.Name << " was not learned: " << why << '\n';
}

void Teach(CfgStore& store, const CodeToLearn& code, Tally& tally) {
  if (code.Code.find_first_not_of("01") != std::string::npos) {
    ++tally.Refused;
    TellRefused(code, "\"bits\" is of 0 and 1 alone, and not " + code.Code);
    return;
  }
  LearnResult result;
  ChangeAmongOthers(store, [&] { result = AddCommand(store, code.Protocol, "G" + code.Code, code.Name); });
  if (result.Done()) {
    ++tally.Learned;
  } else if (result.Refused == Refusal::CodeExists) {
    std::cout << code.Protocol << '&' << code.Name << " is known already, as " << result.Detail << '\n';
  } else {
    ++tally.Refused;
    TellRefused(code, RefusalText(result));
  }
}

}  // namespace

int TeachIndex(const std::string& appPathOption, const std::string& indexFile) {
  OpenConfig config(appPathOption);
  config.RequireWhole();
  const std::vector<CodeToLearn> codes = ReadIndexFile(indexFile);
  Tally tally;
  std::string failed;
  auto next = codes.begin();
  try {
    for (; next != codes.end(); ++next) Teach(config.Mod.Store, *next, tally);
  } catch (const Failure& failure) {
    failed = failure.what();
  }
  std::cout << tally.Learned << " commands learned from " << indexFile << '\n';
  if (next != codes.end()) {
    std::cerr << codes.end() - next << " more were left out, from " << next->Place << " on: " << failed
              << '\n';
  }
  return tally.Refused == 0 && next == codes.end() ? kDone : kNoResult;
}

}  // namespace keplo::cli
