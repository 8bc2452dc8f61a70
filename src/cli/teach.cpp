#include "cli/teach.h"

#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string_view>

#include "cli/commands.h"
#include "cli/open_map.h"
#include "config/learn.h"
#include "config/names.h"
#include "signal/decode.h"

namespace keplo::cli {

namespace {

struct Lesson {
  std::string Protocol, Code, Name;
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

Lesson ToLesson(const nlohmann::json& entry) {
  Lesson lesson;
  lesson.Protocol = SectionOf(entry.at("protocol").get<std::string>());
  lesson.Code = entry.at("bits").get<std::string>();
  if (lesson.Protocol == "RC5" && lesson.Code.size() > kToggleBitOffset) lesson.Code[kToggleBitOffset] = '0';
  const std::string key = entry.value("key", entry.value("name", std::string()));
  const std::string device = entry.value("device", std::string());
  lesson.Name = ValidName(device.empty() ? key : device + "-" + key);
  return lesson;
}

std::vector<Lesson> ReadIndex(const std::string& indexFile) try {
  std::ifstream file(indexFile);
  std::vector<Lesson> lessons;
  for (const nlohmann::json& entry : nlohmann::json::parse(file)) lessons.push_back(ToLesson(entry));
  return lessons;
} catch (const nlohmann::json::exception& error) {
  throw Failure(1, indexFile + " is no index of recordings: " + error.what());
}

}  // namespace

int TeachIndex(const std::string& appPathOption, const std::string& indexFile) {
  OpenConfig config(appPathOption);
  int learned = 0, refused = 0;
  for (const Lesson& lesson : ReadIndex(indexFile)) {
    const LearnResult result = AddCommand(config.Mod.Store, lesson.Protocol, "G" + lesson.Code, lesson.Name);
    if (result.Done()) {
      ++learned;
    } else if (result.Refused == Refusal::CodeExists) {
      std::cout << lesson.Protocol << '&' << lesson.Name << " is known already, as " << result.Detail << '\n';
    } else {
      ++refused;
      std::cerr << lesson.Protocol << '&' << lesson.Name << " was not learned: " << RefusalText(result)
                << '\n';
    }
  }
  std::cout << learned << " commands learned from " << indexFile << '\n';
  return refused == 0 ? kDone : kNoResult;
}

}  // namespace keplo::cli
