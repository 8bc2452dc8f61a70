#include "cli/teach.h"

#include <iostream>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "cli/analysis_option.h"
#include "cli/commands.h"
#include "cli/open_map.h"
#include "config/learn.h"
#include "config/names.h"
#include "disk/posix_file_system.h"
#include "signal/decode.h"

namespace keplo::cli {

namespace {

constexpr std::size_t kMostIndexBytes = std::size_t{16} << 20;  // a list of some hundred thousand codes

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

CodeToLearn ReadEntry(const nlohmann::json& entry, const std::string& place) try {
  CodeToLearn code;
  code.Place = place;
  code.Protocol = SectionOf(entry.at("protocol").get<std::string>());
  code.Code = entry.at("bits").get<std::string>();
  if (code.Protocol == "RC5" && code.Code.size() > kToggleBitOffset) {
    char& toggle = code.Code[kToggleBitOffset];
    if (toggle == '1') toggle = '0';
  }
  const std::string key = entry.value("key", entry.value("name", std::string()));
  const std::string device = entry.value("device", std::string());
  code.Name = ValidName(device.empty() ? key : device + "-" + key);
  return code;
} catch (const nlohmann::json::exception&) {
  throw Failure(1, place + " was expected to hold the texts \"protocol\", \"bits\" and \"key\" or \"name\".");
}

std::vector<CodeToLearn> ReadIndex(const std::string& indexFile) {
  const std::string text = PosixFileSystem().Read(indexFile, kMostIndexBytes);
  const nlohmann::json index = nlohmann::json::parse(text, nullptr, /*allow_exceptions=*/false);
  if (!index.is_array()) throw Failure(1, indexFile + " was expected to be a JSON array of recordings.");
  std::vector<CodeToLearn> codes;
  for (const nlohmann::json& entry : index) {
    codes.push_back(ReadEntry(entry, indexFile + ", entry " + std::to_string(codes.size() + 1)));
  }
  return codes;
}

void TellRefused(const CodeToLearn& code, const std::string& why) {
  std::cerr << code.Place << ": " << code.Protocol << '&' << code.Name << " was not learned: " << why << '\n';
}

void Teach(CfgStore& store, const CodeToLearn& code, Analysis analysis, Tally& tally) {
  if (code.Code.find_first_not_of("01") != std::string::npos) {
    ++tally.Refused;
    TellRefused(code, "\"bits\" is of 0 and 1 alone, and not " + code.Code);
    return;
  }
  LearnResult result;
  ChangeAmongOthers(store,
                    [&] { result = AddCommand(store, code.Protocol, "G" + code.Code, code.Name, analysis); });
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
  const std::vector<CodeToLearn> codes = ReadIndex(indexFile);
  const Analysis analysis = AnalysisOf(config);
  Tally tally;
  std::string failed;
  auto next = codes.begin();
  try {
    for (; next != codes.end(); ++next) Teach(config.Mod.Store, *next, analysis, tally);
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
