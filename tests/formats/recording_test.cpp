#include "formats/recording.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "doubles/temp_folder.h"
#include "formats/formats.h"

namespace keplo::tests {
namespace {

using namespace std::string_literals;

std::string ErrorOf(const std::string& path) try {
  LoadRecording(path);
  return "loaded";
} catch (const FormatError& error) {
  return error.what();
}

TEST(LoadRecording, TakesCapFilesForBytesAndOthersForText) {
  const TempFolder folder;
  for (const std::string& bytes : {"pulse 5\n\0\x80"s, ""s}) {
    for (const char* name : {"a.cap", "a.CAP"}) {
      const Recording capture = LoadRecording(folder.Write(name, bytes));
      ASSERT_EQ(capture.Presses.size(), 1U);
      EXPECT_EQ(std::get<RawBytes>(capture.Presses[0]).Bytes, bytes);
    }
  }
  const Recording text = LoadRecording(folder.Write("a.mode2", "+5 -6 +7\n+8\n"));
  EXPECT_EQ(text.Path, folder.Path() / "a.mode2");
  ASSERT_EQ(text.Presses.size(), 2U);
  EXPECT_EQ(std::get<PulseTrain>(text.Presses[1]), PulseTrain{8});
}

TEST(LoadRecording, EndsWithWhatNeverEnds) {
  EXPECT_EQ(ErrorOf("/dev/zero"), "/dev/zero: larger than the 16777216 bytes that a recording may have");
}

TEST(LoadRecording, StopsWaitingForAPipeAtASignal) {
  const TempFolder folder;
  const std::string pipe = folder.Path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  struct sigaction caught {
  }, before{};
  caught.sa_handler = [](int) {};
  sigaction(SIGUSR1, &caught, &before);
  std::atomic<bool> ended = false;
  std::thread sender([&, reader = pthread_self()] {
    while (!ended) {
      pthread_kill(reader, SIGUSR1);
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  });
  EXPECT_EQ(ErrorOf(pipe), pipe + ": cannot be read: Interrupted system call");
  ended = true;
  sender.join();
  sigaction(SIGUSR1, &before, nullptr);
}

TEST(Formats, TellThemselvesByTheirBytes) {
  EXPECT_EQ(FormatOfBytes("pulse 5\r\n\tspace 6 # größer\n").Name, kMode2Format);
  EXPECT_EQ(FormatOfBytes("\xF0\xF0\0"s).Name, "capture");
  EXPECT_EQ(FormatToWrite("a.cap").Name, kMode2Format) << "captures are only read";
}

}  // namespace
}  // namespace keplo::tests
