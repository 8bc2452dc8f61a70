#include "formats/recording.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace keplo {
namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

class RecordingFiles : public testing::Test {
 protected:
  RecordingFiles() : folder_(fs::path(testing::TempDir()) / "keplo_recordings") {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~RecordingFiles() override { fs::remove_all(folder_); }

  std::string Write(const std::string& name, const std::string& bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return (folder_ / name).string();
  }

  static std::string ErrorOf(const std::string& path) {
    try {
      LoadRecording(path);
    } catch (const FormatError& error) {
      return error.what();
    }
    return "loaded";
  }

  fs::path folder_;
};

TEST_F(RecordingFiles, CapFilesAreBytesAndOthersText) {
  const std::string bytes = "pulse 5\n\0\x80"s;
  const Recording capture = LoadRecording(Write("a.cap", bytes));
  ASSERT_EQ(capture.Presses.size(), 1U);
  EXPECT_EQ(std::get<RawBytes>(capture.Presses[0]).Bytes, bytes);

  const std::string path = Write("a.mode2", "+5 -6 +7\n+8\n");
  const Recording text = LoadRecording(path);
  EXPECT_EQ(text.Path, path);
  ASSERT_EQ(text.Presses.size(), 2U);
  EXPECT_EQ(std::get<PulseTrain>(text.Presses[1]), PulseTrain{8});
}

TEST_F(RecordingFiles, NamesTheFileAndTheReason) {
  const std::string missing = (folder_ / "missing").string();
  EXPECT_EQ(ErrorOf(missing), missing + ": cannot be read: No such file or directory");
  EXPECT_EQ(ErrorOf(folder_.string()), folder_.string() + ": cannot be read: Is a directory");
  const Recording empty = LoadRecording(Write("empty.CAP", ""));
  ASSERT_EQ(empty.Presses.size(), 1U) << "a capture of no bytes is a press that ended early";
  EXPECT_EQ(std::get<RawBytes>(empty.Presses[0]).Bytes, "");
  const std::string huge = Write("huge", std::string(kLargestRecording + 1, '\n'));
  EXPECT_EQ(ErrorOf(huge), huge + ": larger than the 16777216 bytes that a recording may have");
}

TEST(ReadRecording, TakesAStreamWithBytesThatNoTextHasForACapture) {
  std::istringstream text("pulse 5\r\n\tspace 6 # größer\n");
  EXPECT_TRUE(std::holds_alternative<PulseTrain>(ReadRecording(text, "in").Presses.at(0)));
  std::istringstream bytes("\xF0\xF0\0"s);
  EXPECT_EQ(std::get<RawBytes>(ReadRecording(bytes, "in").Presses.at(0)).Bytes, "\xF0\xF0\0"s);
}

}  // namespace
}  // namespace keplo
