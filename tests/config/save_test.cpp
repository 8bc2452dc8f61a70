#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "config/values.h"
#include "config_builder.h"
#include "fake_disk.h"

namespace keplo {
namespace {

namespace fs = std::filesystem;
using tests::Config;
using tests::FakeDisk;
using tests::StoreOnDisk;
using tests::TempFolder;
using tests::UnflushedNames;
using Files = std::map<std::string, std::string>;

std::vector<std::string> NamesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  return names;
}

/// The failure of an action; one with number 0 if it came through.
template <typename Action>
Failure FailureOf(Action action) {
  try {
    action();
  } catch (const Failure& failure) {
    return failure;
  }
  return {0, "done"};
}

bool Tells(const Failure& failure, const std::string& text) {
  return std::string(failure.what()).find(text) != std::string::npos;
}

TEST(LoadConfig, KeepsEveryByte) {
  const std::string bytes("\xEF\xBB\xBF[General]\n\0\xFF\r[END]", 21);
  EXPECT_EQ(StoreOnDisk(bytes).Store.CfgText, bytes);
  EXPECT_EQ(StoreOnDisk(std::string(kMostCharacters, 'x')).Store.CfgText.size(), kMostCharacters);
}

TEST(LoadConfig, RefusesAFileThatCannotBeHeld) {
  TempFolder folder;
  PosixFileSystem files;
  CfgStore store(folder.Path() / "keplo.cfg", files);
  store.CfgText = "as it was";
  const Failure missing = FailureOf([&] { LoadConfig(store); });
  EXPECT_EQ(missing.Number(), ENOENT);
  EXPECT_TRUE(Tells(missing, store.Path.string())) << missing.what();
  EXPECT_TRUE(Tells(missing, "No such file")) << missing.what();

  folder.Write("keplo.cfg", std::string(kMostCharacters + 1, 'x'));
  const Failure large = FailureOf([&] { LoadConfig(store); });
  for (const std::string& text : {store.Path.string(), std::string("32768"), std::string("32767")}) {
    EXPECT_TRUE(Tells(large, text)) << large.what();
  }

  fs::remove(store.Path);
  fs::create_directory(store.Path);
  EXPECT_EQ(FailureOf([&] { LoadConfig(store); }).Number(), EISDIR);
  fs::remove(store.Path);
  ASSERT_EQ(mkfifo(store.Path.c_str(), 0600), 0);
  EXPECT_EQ(FailureOf([&] { LoadConfig(store); }).Number(), EINVAL) << "a pipe must not hold the program up";
  EXPECT_EQ(store.CfgText, "as it was");
}

TEST(SaveConfig, CutsBehindTheClosingHeader) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {Config(""), Config("")},
      {Config("") + "\r\nG101,LOST\r\n", Config("")},
      {"[END]", "[END]\r\n"},
      {"no header\r\n", "no header\r\n"},
      {"", ""},
  };
  for (const auto& [loaded, saved] : cases) {
    StoreOnDisk disk(loaded);
    for (int time = 0; time < 2; ++time) {
      SaveConfig(disk.Store);
      EXPECT_EQ(disk.File(), saved);
      EXPECT_EQ(disk.Store.CfgText, saved);
    }
    EXPECT_EQ(NamesIn(disk.Folder()), std::vector<std::string>{"keplo.cfg"});
  }
}

TEST(SaveConfig, KeepsLinkModeAndOwner) {
  TempFolder folder;
  PosixFileSystem files;
  fs::create_directory(folder.Path() / "real");
  folder.Write("real/settings", Config(""));
  ASSERT_EQ(chmod((folder.Path() / "real/settings").c_str(), 0640), 0);
  const bool gaveAway = chown((folder.Path() / "real/settings").c_str(), 1234, 1235) == 0;
  fs::create_symlink("second", folder.Path() / "keplo.cfg");
  fs::create_symlink("real/settings", folder.Path() / "second");
  CfgStore store(folder.Path() / "keplo.cfg", files);
  LoadConfig(store);

  ASSERT_TRUE(SetGeneralValue(store, "ITYPE", "9"));
  EXPECT_EQ(fs::read_symlink(folder.Path() / "keplo.cfg"), "second");
  EXPECT_EQ(fs::read_symlink(folder.Path() / "second"), "real/settings");
  EXPECT_EQ(folder.Read("real/settings"), store.CfgText);
  EXPECT_EQ(NamesIn(folder.Path() / "real"), std::vector<std::string>{"settings"});
  struct stat status {};
  ASSERT_EQ(stat(store.Path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
  if (gaveAway) {
    EXPECT_EQ(status.st_uid, 1234U);
    EXPECT_EQ(status.st_gid, 1235U);
  }
}

TEST(SaveConfig, WritesAFileThatIsGone) {
  for (const Unpublished way : {Unpublished::Nameless, Unpublished::Named}) {
    TempFolder folder;
    PosixFileSystem files(way);
    CfgStore store(folder.Path() / "keplo.cfg", files);
    store.CfgText = Config("");
    folder.Write(".keplo.cfg.new", "left by a process that was killed");
    SaveConfig(store);
    EXPECT_EQ(folder.Read("keplo.cfg"), Config(""));
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"keplo.cfg"});
  }
}

TEST(SaveConfig, TellsWhatStandsInTheWay) {
  StoreOnDisk disk(Config(""));
  fs::remove(disk.Store.Path);
  fs::create_directory(disk.Store.Path);
  const Failure failure = FailureOf([&] { SetGeneralValue(disk.Store, "ITYPE", "9"); });
  EXPECT_EQ(failure.Number(), EISDIR);
  EXPECT_TRUE(Tells(failure, disk.Store.Path.string())) << failure.what();
  EXPECT_EQ(disk.Store.CfgText, Config(""));
  EXPECT_EQ(NamesIn(disk.Folder()), std::vector<std::string>{"keplo.cfg"});
}

/// A save on a disk where one operation fails.
class BrokenSave : public ::testing::Test {
 protected:
  const std::string old_ = Config("") + "trailing\r\n";
  std::string fresh_ = Config("");
  FakeDisk disk_;
  CfgStore store_{"/home/keplo.cfg", disk_};

  BrokenSave() { fresh_.replace(fresh_.find("ITYPE= 0"), 8, "ITYPE= 9"); }

  /// @return whether the save came through
  bool Save(int failAt, bool forGood) {
    disk_.Put("keplo.cfg", old_);
    store_.CfgText = old_;
    disk_.FailAt(failAt, forGood);
    return FailureOf([&] { SetGeneralValue(store_, "ITYPE", "9"); }).Number() == 0;
  }

  int CountOperations() {
    EXPECT_TRUE(Save(0, false));
    return disk_.Operations();
  }
};

TEST_F(BrokenSave, LeavesTheOldFileAndNothingElse) {
  const int operations = CountOperations();
  EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", fresh_}}));
  for (int failAt = 1; failAt < operations; ++failAt) {
    EXPECT_FALSE(Save(failAt, false));
    EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", old_}})) << failAt;
    EXPECT_EQ(store_.CfgText, old_) << failAt;
  }
  EXPECT_FALSE(Save(operations, false)) << "the flush of the folder is the last operation";
  EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", fresh_}}));
  EXPECT_EQ(store_.CfgText, fresh_) << "text and file agree";
}

TEST_F(BrokenSave, SurvivesAPowerCutAnywhere) {
  const int operations = CountOperations();
  for (const UnflushedNames names : {UnflushedNames::Lost, UnflushedNames::Kept}) {
    for (int failAt = 1; failAt <= operations + 1; ++failAt) {
      const bool saved = Save(failAt, true);
      disk_.PowerCut(names);
      const std::string file = disk_.Files()["keplo.cfg"];
      EXPECT_TRUE(file == old_ || file == fresh_) << failAt << ": " << file;
      EXPECT_TRUE(!saved || file == fresh_) << "a save that was reported is there for good";

      LoadConfig(store_);
      SetGeneralValue(store_, "ITYPE", "9");
      EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", fresh_}})) << "the next save clears what the cut left";
    }
  }
}

/// Another process that saves without end.
class Saver {
 public:
  explicit Saver(CfgStore& store) {
    EXPECT_EQ(pipe(pipe_), 0);
    child_ = fork();
    close(pipe_[child_ == 0 ? 0 : 1]);
    if (child_ != 0) return;
    for (int value = 0;; value = (value + 1) % 1000) {
      if (write(pipe_[1], "s", 1) != 1) _exit(1);
      SetGeneralValue(store, "PROCDELAY", std::to_string(value));
    }
  }
  Saver(const Saver&) = delete;
  Saver& operator=(const Saver&) = delete;
  ~Saver() {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
    close(pipe_[0]);
  }

  void WaitForASave() const {
    char begun = 0;
    EXPECT_EQ(read(pipe_[0], &begun, 1), 1);
  }

 private:
  int pipe_[2] = {};
  pid_t child_ = 0;
};

/// Lets a part of a save go by.
void Idle(unsigned turns) {
  while (turns-- > 0) getppid();
}

TEST(KilledSave, LeavesAWholeFile) {
  std::mt19937 random(7);
  for (const Unpublished way : {Unpublished::Nameless, Unpublished::Named}) {
    TempFolder folder;
    folder.Write("keplo.cfg", Config(""));
    PosixFileSystem files(way);
    CfgStore store(folder.Path() / "keplo.cfg", files);
    LoadConfig(store);
    for (int round = 0; round < 60; ++round) {
      {
        const Saver saver(store);
        saver.WaitForASave();
        Idle(random() % 20000);
      }
      std::string file = folder.Read("keplo.cfg");
      const std::size_t value = file.find("PROCDELAY= ") + 11;
      file.replace(value, file.find('\r', value) - value, "10");
      ASSERT_EQ(file, Config("")) << "kill " << round;
    }
    SaveConfig(store);
    EXPECT_EQ(NamesIn(folder.Path()), std::vector<std::string>{"keplo.cfg"});
  }
}

TEST(KilledSave, TwoProgramsTakeTurns) {
  TempFolder folder;
  folder.Write("keplo.cfg", Config(""));
  PosixFileSystem files;
  CfgStore store(folder.Path() / "keplo.cfg", files);
  LoadConfig(store);
  {
    const Saver other(store);
    for (int save = 0; save < 30; ++save) {
      EXPECT_EQ(FailureOf([&] { SetGeneralValue(store, "PROCDELAY", std::to_string(save)); }).Number(), 0);
    }
  }
  LoadConfig(store);
  EXPECT_EQ(store.CfgText.substr(store.CfgText.find("ITYPE=")), Config("").substr(Config("").find("ITYPE=")));
}

}  // namespace
}  // namespace keplo
