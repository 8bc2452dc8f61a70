#include "cli/teach.h"

#include <iostream>
#include <string_view>
#include <vector>

#include "cli/commands.h"
#include "cli/index_file.h"
#include "cli/open_install.h"
#include "cli/press_table.h"
#include "cli/reference.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "program/counted.h"
#include "program/printable.h"

namespace keplo::cli {

namespace {

struct Tally {
  int Learned = 0;
  int Refused = 0;
};

void Teach(OpenedConfig& config, const CodeToLearn& wanted, Analysis analysis, Tally& tally) {
  const std::string reference = CommandReference{wanted.Protocol, wanted.Name}.Text();
  const auto refuse = [&](const std::string& why) {
    ++tally.Refused;
    std::cerr << Printable(wanted.Place + ": " + reference + " was not learned: " + why) << '\n';
  };
  if (wanted.Code.find_first_not_of("01") != std::string::npos) {
    return refuse("\"bits\" is of 0 and 1 alone, and not " + wanted.Code);
  }
  LearnResult result;
  config.Change([&](CfgStore& store) {
    result = AddCommand(store, wanted.Protocol, "G" + wanted.Code, wanted.Name, analysis);
  });
  if (result.Done()) {
    ++tally.Learned;
  } else if (result.Refused == Refusal::CodeExists) {
    const auto known = keplo::FindCommand(config.Text(), wanted.Code, /*limit=*/0, analysis);
    std::cout << Printable(reference) << " is known already, as "
              << Printable(known ? known->Reference() : result.Detail) << '\n';
  } else {
    refuse(ReasonedText(result));
  }
}

}  // namespace

int TeachIndex(const std::string& appPathOption, const std::string& indexFile) {
  OpenedConfig config(appPathOption);
  config.RequireWhole();
  const std::vector<CodeToLearn> codes = ReadIndexFile(indexFile);
  const Analysis analysis = AnalysisOf(config);
  Tally tally;
  std::string failed;
  auto next = codes.begin();
  try {
    for (; next != codes.end(); ++next) Teach(config, *next, analysis, tally);
  } catch (const NotWritten& failure) {
    failed = failure.what();
  }
  std::cout << Counted(tally.Learned, "command") << " learned from " << Printable(indexFile) << '\n';
  if (next == codes.end()) return tally.Refused == 0 ? kDone : kNoResult;
  std::cerr << Printable("stopped at " + next->Place + "; " + Counted(codes.end() - next, "code") +
                         " not learned: " + failed)
            << '\n';
  return kNotWritten;
}

}  // namespace keplo::cli
