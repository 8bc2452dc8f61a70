#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "config/values.h"
#include "config_builder.h"
#include "disk/replace_file.h"
#include "doubles/child_process.h"
#include "dying_files.h"
#include "fake_disk.h"

namespace keplo {
namespace {

namespace fs = std::filesystem;
using tests::Config;
using tests::DyingFiles;
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
  } catch (const std::bad_alloc&) {
    return {ENOMEM, "out of memory"};
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

TEST(SaveConfig, LosesNothingThatAnotherProgramHasWritten) {
  StoreOnDisk disk(Config(""));
  const fs::path file = disk.Folder() / "keplo.cfg";
  const auto write = [&](const std::string& text) { std::ofstream(file, std::ios::binary) << text; };
  for (const std::string number : {"1", "2"}) {
    write("of another program " + number);
    ASSERT_TRUE(SetGeneralValue(disk.Store, "COMPORT", "1" + number));
    EXPECT_EQ(disk.File(), disk.Store.CfgText);
    EXPECT_EQ(disk.Store.KeptAside, file.string() + ".other-" + number);
    std::ifstream kept(disk.Store.KeptAside);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(kept), {}), "of another program " + number);
  }
  disk.Store.KeptAside.clear();
  SaveConfig(disk.Store);
  fs::remove(file);
  SaveConfig(disk.Store);
  EXPECT_TRUE(disk.Store.KeptAside.empty()) << "its own text, or none, is nobody else's";

  disk.Store.RefusesOtherText = true;
  write("of another program");
  EXPECT_THROW(SetGeneralValue(disk.Store, "COMPORT", "7"), ChangedElsewhere);
  EXPECT_EQ(disk.File(), "of another program");
  EXPECT_EQ(NamesIn(disk.Folder()).size(), 3U);
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

  fs::remove(disk.Store.Path);
  ASSERT_EQ(mkfifo(disk.Store.Path.c_str(), 0600), 0);
  EXPECT_EQ(FailureOf([&] { SaveConfig(disk.Store); }).Number(), EINVAL);
  EXPECT_TRUE(fs::is_fifo(disk.Store.Path)) << "a pipe is not replaced by a file";
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
    store_.FileText = old_;
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
  for (disk_.OutOfMemory = true;; disk_.OutOfMemory = false) {
    for (int failAt = 1; failAt < operations; ++failAt) {
      EXPECT_FALSE(Save(failAt, false));
      EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", old_}})) << failAt;
      EXPECT_EQ(store_.CfgText, old_) << failAt;
    }
    if (!disk_.OutOfMemory) break;
  }
  EXPECT_FALSE(Save(operations, false)) << "the flush of the folder is the last operation";
  EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", fresh_}}));
  EXPECT_EQ(store_.CfgText, fresh_) << "text and file agree";
}

TEST_F(BrokenSave, KeepsNoCopyOfAnotherTextThatIsStillInItsPlace) {
  const auto save = [&](int failAt) {
    disk_.Put("keplo.cfg", "of another program");
    store_.CfgText = old_;
    store_.FileText = old_;
    disk_.FailAt(failAt, false);
    return FailureOf([&] { SetGeneralValue(store_, "ITYPE", "9"); }).Number() == 0;
  };
  ASSERT_TRUE(save(0));
  const int operations = disk_.Operations();
  EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", fresh_}, {"keplo.cfg.other-1", "of another program"}}));
  store_.KeptAside.clear();
  disk_ = FakeDisk();
  for (int failAt = 1; failAt < operations; ++failAt) {
    EXPECT_FALSE(save(failAt));
    EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", "of another program"}})) << failAt;
    EXPECT_TRUE(store_.KeptAside.empty());
  }
}

TEST_F(BrokenSave, RespectsAWriteProtectedFile) {
  disk_.Writable = false;
  EXPECT_FALSE(Save(0, false));
  EXPECT_EQ(disk_.Files(), (Files{{"keplo.cfg", old_}}));
  EXPECT_EQ(store_.CfgText, old_);
}

TEST_F(BrokenSave, KeepsTheTextIfTheFileCannotBeRead) {
  disk_.Put("keplo.cfg", fresh_);
  store_.CfgText = old_;
  for (const int failAt : {1, 2}) {
    disk_.FailAt(failAt, false);
    EXPECT_EQ(FailureOf([&] { LoadConfig(store_); }).Number(), EIO);
    EXPECT_EQ(store_.CfgText, old_);
  }
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

/// A configuration file on the real disk, whose saves are killed at every operation in turn.
class KilledProgram : public ::testing::TestWithParam<Unpublished> {
 protected:
  TempFolder folder_;
  PosixFileSystem files_{GetParam()};

  /// @return how often the action was killed until it came through
  template <typename Action, typename Check>
  int KillAt(Action action, Check check) {
    for (int deadly = 1;; ++deadly) {
      tests::ChildProcess child([&] {
        DyingFiles files(files_, deadly);
        action(files);
      });
      const int code = child.Join();
      check(code);
      if (code != DyingFiles::kKilled || HasFailure()) {
        EXPECT_EQ(code, 0);
        return deadly - 1;
      }
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Ways, KilledProgram, ::testing::Values(Unpublished::Nameless, Unpublished::Named));

TEST_P(KilledProgram, LeavesAWholeFile) {
  std::string fresh = Config("");
  fresh.replace(fresh.find("ITYPE= 0"), 8, "ITYPE= 9");
  folder_.Write("keplo.cfg", Config(""));
  const int kills = KillAt(
      [&](FileSystem& files) {
        CfgStore store(folder_.Path() / "keplo.cfg", files);
        store.CfgText = Config("");
        SetGeneralValue(store, "ITYPE", "9");
      },
      [&](int code) {
        const std::string file = folder_.Read("keplo.cfg");
        EXPECT_TRUE(file == fresh || (code != 0 && file == Config(""))) << file;
      });
  EXPECT_GE(kills, 11);
  EXPECT_EQ(NamesIn(folder_.Path()), std::vector<std::string>{"keplo.cfg"}) << "the last save cleared up";
}

TEST_P(KilledProgram, BringsAWholeFileOrNone) {
  const fs::path path = folder_.Path() / "keplo.cfg";
  const int kills = KillAt([&](FileSystem& files) { CreateFile(files, path, Config("")); },
                           [&](int code) {
                             EXPECT_EQ(folder_.Read("keplo.cfg"), fs::exists(path) ? Config("") : "");
                             if (code != 0) fs::remove(path);
                           });
  EXPECT_GE(kills, 8);
  EXPECT_EQ(NamesIn(folder_.Path()), std::vector<std::string>{"keplo.cfg"});
  EXPECT_FALSE(CreateFile(files_, path, "another"));
  EXPECT_EQ(folder_.Read("keplo.cfg"), Config(""));
  EXPECT_EQ(NamesIn(folder_.Path()), std::vector<std::string>{"keplo.cfg"});
}

TEST(TwoPrograms, TakeTurns) {
  TempFolder folder;
  folder.Write("keplo.cfg", Config(""));
  PosixFileSystem files(Unpublished::Nameless, std::chrono::minutes(1));
  CfgStore store(folder.Path() / "keplo.cfg", files);
  LoadConfig(store);
  const auto saveOften = [&] {
    for (int save = 0; save < 30; ++save) SetGeneralValue(store, "PROCDELAY", std::to_string(save));
  };
  tests::ChildProcess other(saveOften);
  EXPECT_EQ(FailureOf(saveOften).Number(), 0);
  EXPECT_EQ(other.Join(), 0);
  EXPECT_EQ(folder.Read("keplo.cfg"), store.CfgText) << "both saved the same last";
}

TEST(TwoPrograms, DoNotWaitForEachOtherForGood) {
  TempFolder folder;
  folder.Write("keplo.cfg", Config(""));
  PosixFileSystem files(Unpublished::Nameless, std::chrono::milliseconds(0));
  CfgStore store(folder.Path() / "keplo.cfg", files);
  LoadConfig(store);
  const auto heldByAnother = files.Lock(folder.Path());
  const Failure failure = FailureOf([&] { SetGeneralValue(store, "ITYPE", "9"); });
  EXPECT_EQ(failure.Number(), EWOULDBLOCK);
  EXPECT_TRUE(Tells(failure, "fuser -v " + folder.Path().string())) << failure.what();
  EXPECT_EQ(store.CfgText + folder.Read("keplo.cfg"), Config("") + Config(""));
}

TEST(SaveConfig, KeepsGroupAndRightsWithoutTheOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  struct Case {
    gid_t OwnGroup;
    mode_t Mode, Kept;
  };
  for (const Case& c : {Case{1235, 0664, 0664}, Case{1236, 0664, 0644}, Case{1236, 04660, 0600}}) {
    TempFolder folder;
    ASSERT_EQ(chmod(folder.Path().c_str(), 0777), 0);
    const fs::path path = folder.Write("keplo.cfg", Config(""));
    ASSERT_EQ(chown(path.c_str(), 1000, 1235) + chmod(path.c_str(), c.Mode), 0);
    tests::ChildProcess saver([&] {
      const gid_t groups[] = {1235};
      const bool member = c.OwnGroup == 1235;
      if (setgroups(member ? 1 : 0, groups) + setgid(c.OwnGroup == 1235 ? 1237 : c.OwnGroup) + setuid(1234) !=
          0)
        _exit(2);
      PosixFileSystem files;
      const std::unique_ptr<NewFile> file = files.Create(path.string() + ".new", 0600);
      file->SetAttributes({c.Mode, 1000, 1235, true});
      file->Publish();
    });
    ASSERT_EQ(saver.Join(), 0);
    struct stat status {};
    ASSERT_EQ(stat((path.string() + ".new").c_str(), &status), 0);
    EXPECT_EQ(status.st_gid, c.OwnGroup);
    EXPECT_EQ(status.st_mode & 07777, c.Kept);
  }
}

TEST(SaveConfig, WorksWithoutProc) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can shut a process in";
  TempFolder jail;
  jail.Write("keplo.cfg", Config(""));
  tests::ChildProcess saver([&] {
    if (chroot(jail.Path().c_str()) != 0) _exit(2);
    PosixFileSystem files;
    CfgStore store("/keplo.cfg", files);
    LoadConfig(store);
    SetGeneralValue(store, "ITYPE", "9");
  });
  EXPECT_EQ(saver.Join(), 0);
  EXPECT_NE(jail.Read("keplo.cfg").find("ITYPE= 9"), std::string::npos);
}

}  // namespace
}  // namespace keplo
