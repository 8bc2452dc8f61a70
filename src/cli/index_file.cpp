#include "cli/index_file.h"

#include <cerrno>
#include <nlohmann/json.hpp>

#include "config/cfg_text.h"
#include "config/valid_names.h"
#include "disk/posix_file_system.h"
#include "failure.h"
#include "signal/decode.h"

namespace keplo::cli {

namespace {

constexpr std::size_t kMostIndexBytes = std::size_t{1} << 20;  // far more codes than fit keplo.cfg
constexpr int kDeepestLevel = 2;                               // texts in objects in the array

std::string SectionOf(const std::string& protocol, const std::string& place) {
  for (const std::string_view section : {"NEC", "SONY", "RC5"}) {
    if (protocol.size() >= section.size() &&
        EqualNoCase(std::string_view(protocol).substr(0, section.size()), section)) {
      return std::string(section);
    }
  }
  throw Failure(1, place + " names the protocol " + protocol + "; nec, sony and rc5 can be learned.");
}

/// Replaces characters that are not permitted in a command name.
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
  wanted.Protocol = SectionOf(entry.at("protocol").get<std::string>(), place);
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

}  // namespace

std::vector<CodeToLearn> ParseIndex(std::string_view text, const std::string& indexFile) {
  // Deeper levels are not used, and could take a lot of memory.
  const auto keep = [](int depth, nlohmann::json::parse_event_t /*event*/, nlohmann::json& /*value*/) {
    return depth <= kDeepestLevel;
  };
  const nlohmann::json index = nlohmann::json::parse(text, keep, /*allow_exceptions=*/false);
  if (!index.is_array()) throw Failure(1, indexFile + " was expected to be a JSON array of recordings.");
  std::vector<CodeToLearn> codes;
  for (const nlohmann::json& entry : index) {
    codes.push_back(ToCode(entry, indexFile + ", entry " + std::to_string(codes.size() + 1)));
  }
  return codes;
}

std::vector<CodeToLearn> ReadIndexFile(const std::string& indexFile) {
  PosixFileSystem files;
  if (files.Size(indexFile) > kMostIndexBytes) {
    throw Failure(EFBIG, indexFile + " is larger than the " + std::to_string(kMostIndexBytes) +
                             " bytes that an index file may have. Give its codes in several files.");
  }
  return ParseIndex(files.Read(indexFile, kMostIndexBytes), indexFile);
}

}  // namespace keplo::cli
