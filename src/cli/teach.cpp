#include "cli/teach.h"

#include <cerrno>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "cli/commands.h"
#include "cli/open_install.h"
#include "cli/press_table.h"
#include "cli/reference.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "config/names.h"
#include "disk/posix_file_system.h"
#include "program/printable.h"
#include "signal/decode.h"

namespace keplo::cli {

namespace {

constexpr std::size_t kMostIndexBytes = std::size_t{1} << 20;  // far more codes than keplo.cfg holds

/// An entry of the file.
struct CodeToLearn {
  std::string Place;  // in the file
  std::string Protocol, Code, Name;
};

struct Tally {
  int Learned = 0;
  int Refused = 0;
};

std::string SectionOf(const std::string& protocol) {
  for (const std::string_view section : {"NEC", "SONY", "RC5"}) {
    if (protocol.size() >= section.size() &&
        EqualNoCase(std::string_view(protocol).substr(0, section.size()), section)) {
      return std::string(section);
    }
  }
  throw Failure(1, "An index file names the protocol " + protocol + "; nec, sony and rc5 can be learned.");
}

/// A command name may hold letters, digits, - and _ alone.
std::string ValidName(std::string name) {
  for (char& c : name) {
    std::string character(1, c);
    if (!IsValidName(character) || character.empty()) c = '_';
  }
  return name;
}

CodeToLearn ToCode(const nlohmann::json& entry, const std::string& place) try {
  CodeToLearn wanted;
  wanted.Place = place;
  wanted.Protocol = SectionOf(entry.at("protocol").get<std::string>());
  wanted.Code = entry.at("bits").get<std::string>();
  if (wanted.Protocol == "RC5" && wanted.Code.size() > kToggleBitOffset) {
    char& toggle = wanted.Code[kToggleBitOffset];
    if (toggle == '1') toggle = '0';
  }
  const std::string key = entry.value("key", entry.value("name", std::string()));
  const std::string device = entry.value("device", std::string());
  wanted.Name = ValidName(device.empty() ? key : device + "-" + key);
  return wanted;
} catch (const nlohmann::json::exception&) {
  throw Failure(1, place + " was expected to hold the texts \"protocol\", \"bits\" and \"key\" or \"name\".");
}

std::vector<CodeToLearn> ReadIndex(const std::string& indexFile) {
  PosixFileSystem files;
  if (files.Size(indexFile) > kMostIndexBytes) {
    throw Failure(EFBIG, indexFile + " is larger than the " + std::to_string(kMostIndexBytes) +
                             " bytes that an index file may have. Give its codes in several files.");
  }
  const nlohmann::json index =
      nlohmann::json::parse(files.Read(indexFile, kMostIndexBytes), nullptr, /*allow_exceptions=*/false);
  if (!index.is_array()) throw Failure(1, indexFile + " was expected to be a JSON array of recordings.");
  std::vector<CodeToLearn> codes;
  for (const nlohmann::json& entry : index) {
    codes.push_back(ToCode(entry, indexFile + ", entry " + std::to_string(codes.size() + 1)));
  }
  return codes;
}

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
              << Printable(known ? known->Protocol + "&" + known->Command : result.Detail) << '\n';
  } else {
    refuse(RefusalText(result));
  }
}

}  // namespace

int TeachIndex(const std::string& appPathOption, const std::string& indexFile) {
  OpenedConfig config(appPathOption);
  config.RequireWhole();
  const std::vector<CodeToLearn> codes = ReadIndex(indexFile);
  const Analysis analysis = AnalysisOf(config);
  Tally tally;
  std::string failed;
  auto next = codes.begin();
  try {
    for (; next != codes.end(); ++next) Teach(config, *next, analysis, tally);
  } catch (const NotWritten& failure) {
    failed = failure.what();
  }
  std::cout << tally.Learned << " commands learned from " << Printable(indexFile) << '\n';
  if (next == codes.end()) return tally.Refused == 0 ? kDone : kNoResult;
  std::cerr << Printable("stopped at " + next->Place + "; " + std::to_string(codes.end() - next) +
                         " codes not learned: " + failed)
            << '\n';
  return kNotWritten;
}

}  // namespace keplo::cli
