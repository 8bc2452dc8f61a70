#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "press_builder.h"
#include "signal/decode.h"

namespace keplo::tests {
namespace {

namespace fs = std::filesystem;

/// Recordings of real remotes with an index.json of their true bits; they are no part of the project.
fs::path CapturesFolder() {
  const char* set = std::getenv("KEPLO_CAPTURES");
  return set != nullptr ? fs::path(set) : fs::path(KEPLO_SOURCE_DIR) / ".." / "shared" / "captures";
}

struct RealRecordings : ::testing::Test {
  nlohmann::json Entries;

  void SetUp() override {
    std::ifstream index(CapturesFolder() / "index.json");
    if (!index)
      GTEST_SKIP() << "There are no recordings in " << CapturesFolder() << "; KEPLO_CAPTURES names a folder.";
    Entries = nlohmann::json::parse(index);
  }
  static std::string CodeOf(const nlohmann::json& entry) {
    std::string code = entry.at("bits");
    if (entry.at("protocol") == "rc5") code[kToggleBitOffset] = '0';
    return code;
  }
  static PulseTrain PressOf(const nlohmann::json& entry) {
    const Recording recording = LoadRecording((CapturesFolder() / std::string(entry.at("file"))).string());
    return std::get<PulseTrain>(recording.Presses.at(0));
  }
};

TEST_F(RealRecordings, AreHeardRightOrNotAtAll) {
  for (const int sampleTime : {50, 55, 60}) {
    LineOptions line;
    line.SampleTime = sampleTime;
    std::size_t right = 0;
    for (const nlohmann::json& entry : Entries) {
      const std::string code = CodeOf(entry);
      const std::string heard = Heard(PressOf(entry), line);
      // The analysis cannot measure a press whose longer marks or spaces outnumber the shorter ones.
      EXPECT_TRUE(heard == code || heard == "no-timing")
          << entry.at("file") << " at " << sampleTime << " us: " << heard;
      if (heard == code) ++right;
    }
    EXPECT_GE(right * 4, Entries.size() * 3) << "at " << sampleTime << " us";
  }
}

TEST_F(RealRecordings, AreAllReadByTheSecondLookEvenUnshaped) {
  for (const nlohmann::json& entry : Entries) {
    for (const int sampleTime : {40, 50, 55, 60, 75}) {
      for (const bool shape : {false, true}) {
        LineOptions line;
        line.SampleTime = sampleTime;
        line.Shape = shape;
        line.HoldMs = 0;
        EXPECT_EQ(Heard(PressOf(entry), line, Analysis::Second), CodeOf(entry))
            << entry.at("file") << " at " << sampleTime << " us";
      }
    }
  }
}

}  // namespace
}  // namespace keplo::tests
