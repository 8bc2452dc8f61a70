#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "config/change_value.h"
#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "disk/posix_file_system.h"
#include "disk/replace_file.h"
#include "doubles/child_process.h"
#include "doubles/expect.h"
#include "doubles/temp_folder.h"

namespace keplo::tests {
namespace {

namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

const std::string kOld = Config("") + "trailing\r\n", kFresh = Replaced(Config(""), "ITYPE= 0", "ITYPE= 9"),
                  kOther = "of another program";

TEST(LoadConfig, KeepsEveryByte) {
  for (const std::string& bytes :
       {std::string("\xEF\xBB\xBF[General]\n\0\xFF\r[END]", 21), std::string(kMostCharacters, 'x')}) {
    EXPECT_EQ(Stored(bytes).Store.CfgText, bytes);
  }
}

TEST(LoadAndSave, SayWhyTheyFail) {
  const auto expectReports = [](const std::function<void(const char*)>& make, int loadNumber, int saveNumber,
                                const std::string& reported) {
    TempFolder folder;
    PosixFileSystem files;
    CfgStore store(folder.Write("keplo.cfg", Config("")), files);
    LoadConfig(store);
    fs::remove(store.Path);
    make(store.Path.c_str());
    const Failure load = FailureOf([&] { LoadConfig(store); });
    const Failure save = FailureOf([&] { SetGeneralValue(store, "ITYPE", "9"); });
    EXPECT_EQ(load.Number(), loadNumber);
    ExpectPart(load.what(), reported);
    ExpectPart(load.what(), store.Path.string());
    EXPECT_EQ(save.Number(), saveNumber) << save.what();
    ExpectPart(save.what(), saveNumber == 0 ? "done" : store.Path.string());
    EXPECT_EQ(store.CfgText, saveNumber == 0 ? kFresh : Config(""));
    EXPECT_EQ(fs::is_regular_file(store.Path), saveNumber == 0 || saveNumber == EFBIG)
        << "nothing is replaced";
  };
  const auto file = [](std::size_t size) {
    return [=](const char* path) { std::ofstream(path) << std::string(size, 'x'); };
  };
  expectReports([](const char*) {}, ENOENT, 0, "No such file");
  expectReports(file(kMostCharacters + 1), EFBIG, 0,
                "has 32768 characters, which is above the limit of 32767");
  expectReports(file((1U << 20U) + 1), EFBIG, EFBIG, "has 1048577");
  expectReports([](const char* path) { fs::create_directory(path); }, EISDIR, EISDIR, "directory");
  expectReports([](const char* path) { mkfifo(path, 0600); }, EINVAL, EINVAL, "not a regular file");
}

TEST(SaveConfig, CutsAfterTheClosingHeader) {
  const std::string whole = Config("");
  const Files texts = {
      {whole, whole}, {kOld, whole}, {"[END]", "[END]\r\n"}, {"no header", "no header"}, {"", ""}};
  for (const auto& [loaded, saved] : texts) {
    Stored stored(loaded);
    for (int time = 0; time < 2; ++time) {
      SaveConfig(stored.Store);
      EXPECT_EQ(stored.Disk.Files(), (Files{{"keplo.cfg", saved}}));
      EXPECT_EQ(stored.Store.CfgText, saved);
    }
  }
}

TEST(SaveConfig, KeepsWhatAnotherProgramHasWritten) {
  Stored stored(Config(""));
  CfgStore& store = stored.Store;
  Files files;
  for (const std::string number : {"1", "2"}) {
    stored.Write(kOther + number);
    ASSERT_TRUE(SetGeneralValue(store, "COMPORT", "1" + number));
    EXPECT_EQ(store.ConflictCopy, store.Path.string() + ".other-" + number);
    files["keplo.cfg"] = store.CfgText;
    files["keplo.cfg.other-" + number] = kOther + number;
    EXPECT_EQ(stored.Disk.Files(), files);
  }
  store.ConflictCopy.clear();
  SaveConfig(store);
  stored.Disk.Remove(store.Path);
  SaveConfig(store);
  EXPECT_TRUE(store.ConflictCopy.empty()) << "its own text, or none, is nobody else's";
  EXPECT_EQ(stored.Disk.Files(), files);

  store.RefusesOtherText = true;
  stored.Write(files["keplo.cfg"] = kOther);
  EXPECT_THROW(SetGeneralValue(store, "COMPORT", "7"), ChangedElsewhere);
  EXPECT_EQ(stored.Disk.Files(), files);
}

/// A save over a file on a disk where one operation may fail.
class BrokenSave : public ::testing::Test {
 protected:
  Stored stored_{kOld};

  /// @param found what is in the file by now
  /// @return whether the save came through
  bool Save(const std::string& found, int failAt, bool forGood) {
    stored_.Disk.FailAt(0, false);
    for (const auto& [name, content] : stored_.Disk.Files()) stored_.Disk.Remove(name);
    stored_.Load(kOld);
    stored_.Write(found);
    stored_.Store.ConflictCopy.clear();
    stored_.Disk.FailAt(failAt, forGood);
    return FailureOf([&] { SetGeneralValue(stored_.Store, "ITYPE", "9"); }).Number() == 0;
  }
};

TEST_F(BrokenSave, LeavesTheOldFileAndNothingElse) {
  for (const auto& [found, outOfMemory] : {std::pair(kOld, false), {kOld, true}, {kOther, false}}) {
    const Files before = {{"keplo.cfg", found}};
    Files after = {{"keplo.cfg", kFresh}};
    if (found == kOther) after["keplo.cfg.other-1"] = kOther;
    stored_.Disk.OutOfMemory = outOfMemory;
    ASSERT_TRUE(Save(found, 0, false));
    EXPECT_EQ(stored_.Disk.Files(), after);
    const int operations = stored_.Disk.Operations();
    for (int failAt = 1; failAt <= operations; ++failAt) {
      EXPECT_FALSE(Save(found, failAt, false));
      const bool saved = failAt == operations;  // the flush of the folder, after the save
      EXPECT_EQ(stored_.Disk.Files(), saved ? after : before) << failAt;
      EXPECT_EQ(stored_.Store.CfgText, saved ? kFresh : kOld) << failAt;
      EXPECT_EQ(stored_.Store.ConflictCopy.empty(), !saved || found == kOld) << failAt;
    }
  }
}

TEST_F(BrokenSave, SurvivesAPowerCutAnywhere) {
  ASSERT_TRUE(Save(kOld, 0, false));
  const int operations = stored_.Disk.Operations();
  for (const UnflushedNames names : {UnflushedNames::Lost, UnflushedNames::Kept}) {
    for (int failAt = 1; failAt <= operations + 1; ++failAt) {
      const bool saved = Save(kOld, failAt, true);
      stored_.Disk.PowerCut(names);
      EXPECT_TRUE(stored_.File() == kFresh || (!saved && stored_.File() == kOld)) << failAt << stored_.File();
      LoadConfig(stored_.Store);
      SetGeneralValue(stored_.Store, "ITYPE", "9");
      EXPECT_EQ(stored_.Disk.Files(), (Files{{"keplo.cfg", kFresh}}))
          << "the next save clears what the cut left";
    }
  }
}

TEST_F(BrokenSave, RespectsAProtectedFileAndKeepsTheTextIfItCannotBeRead) {
  for (const int failAt : {1, 2}) {
    stored_.Disk.FailAt(failAt, false);
    EXPECT_EQ(FailureOf([&] { LoadConfig(stored_.Store); }).Number(), EIO);
    EXPECT_EQ(stored_.Store.CfgText, kOld);
  }
  stored_.Disk.ProtectFromWriting();
  EXPECT_FALSE(Save(kOld, 0, false));
  EXPECT_EQ(stored_.Disk.Files(), (Files{{"keplo.cfg", kOld}}));
  EXPECT_EQ(stored_.Store.CfgText, kOld);
}

class KilledProgram : public ::testing::TestWithParam<Unpublished> {};
INSTANTIATE_TEST_SUITE_P(Ways, KilledProgram, ::testing::Values(Unpublished::Nameless, Unpublished::Named));

TEST_P(KilledProgram, LeavesAWholeFileOrNone) {
  for (const bool exists : {true, false}) {
    TempFolder folder;
    PosixFileSystem real(GetParam());
    const fs::path path = folder.Path() / "keplo.cfg";
    const std::string before = exists ? Config("") : "", after = exists ? kFresh : Config("");
    if (exists) folder.Write("keplo.cfg", before);
    folder.Write(".keplo.cfg.new", "left by a process that was killed");
    int code = DyingFiles::kKilled, deadly = 0;
    while (code == DyingFiles::kKilled && !HasFailure()) {
      ++deadly;
      ChildProcess child([&] {
        DyingFiles files(real, deadly);
        CfgStore store(path, files);
        store.CfgText = before;
        if (!exists) CreateFile(files, path, after);
        if (exists) SetGeneralValue(store, "ITYPE", "9");
      });
      code = child.Join();
      const std::string file = folder.Read("keplo.cfg");
      EXPECT_TRUE(file == after || (code != 0 && file == before)) << deadly << ": " << file;
      if (!exists && code != 0) fs::remove(path);
    }
    EXPECT_EQ(code, 0);
    EXPECT_GT(deadly, exists ? 11 : 8);
    EXPECT_FALSE(CreateFile(real, path, "another"));
    EXPECT_EQ(folder.Read("keplo.cfg"), after);
    EXPECT_EQ(folder.Files(), Texts{"keplo.cfg"}) << "the last save cleared up";
  }
}

TEST(TwoPrograms, TakeTurns) {
  TempFolder folder;
  PosixFileSystem files(Unpublished::Nameless, std::chrono::minutes(1));
  CfgStore store(folder.Write("keplo.cfg", Config("")), files);
  LoadConfig(store);
  const auto saveOften = [&] {
    for (int save = 0; save < 30; ++save) SetGeneralValue(store, "PROCDELAY", std::to_string(save));
  };
  ChildProcess other(saveOften);
  EXPECT_EQ(FailureOf(saveOften).Number(), 0);
  EXPECT_EQ(other.Join(), 0);
  EXPECT_EQ(folder.Read("keplo.cfg"), store.CfgText) << "both saved the same last";

  PosixFileSystem impatient(Unpublished::Nameless, std::chrono::milliseconds(0));
  CfgStore waiting(store.Path, impatient);
  LoadConfig(waiting);
  const auto heldByAnother = files.Lock(folder.Path());
  const Failure failure = FailureOf([&] { SetGeneralValue(waiting, "ITYPE", "9"); });
  EXPECT_EQ(failure.Number(), EWOULDBLOCK);
  ExpectPart(failure.what(), "fuser -v " + folder.Path().string());
  EXPECT_EQ(waiting.CfgText + folder.Read("keplo.cfg"), store.CfgText + store.CfgText);
}

struct stat StatusOf(const fs::path& path) {
  struct stat status {};
  EXPECT_EQ(stat(path.c_str(), &status), 0);
  return status;
}

TEST(SaveConfig, KeepsLinkModeAndOwner) {
  TempFolder folder;
  PosixFileSystem files;
  fs::create_directory(folder.Path() / "real");
  const fs::path real = folder.Write("real/settings", Config(""));
  ASSERT_EQ(chmod(real.c_str(), 0640), 0);
  const bool gaveAway = chown(real.c_str(), 1234, 1235) == 0;
  fs::create_symlink("second", folder.Path() / "keplo.cfg");
  fs::create_symlink("real/settings", folder.Path() / "second");
  CfgStore store(folder.Path() / "keplo.cfg", files);
  LoadConfig(store);
  ASSERT_TRUE(SetGeneralValue(store, "ITYPE", "9"));
  EXPECT_EQ(fs::read_symlink(store.Path), "second");
  EXPECT_EQ(fs::read_symlink(folder.Path() / "second"), "real/settings");
  EXPECT_EQ(folder.Read("real/settings"), kFresh);
  EXPECT_EQ(std::distance(fs::directory_iterator(real.parent_path()), {}), 1);
  const struct stat status = StatusOf(real);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
  EXPECT_EQ(status.st_uid, gaveAway ? 1234U : geteuid());
  EXPECT_EQ(status.st_gid, gaveAway ? 1235U : getegid());
}

TEST(SaveConfig, KeepsGroupAndRightsWithoutTheOwner) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become another user";
  for (const auto& [isMember, mode, kept] :  // of the group of the old file
       {std::tuple(true, 0664U, 0664U), {false, 0664U, 0644U}, {false, 04660U, 0600U}}) {
    TempFolder folder;
    const fs::path path = folder.Path() / "keplo.cfg";
    ChildProcess saver([&, isMember = isMember, mode = mode] {
      const gid_t groups[] = {1235};
      if (setgroups(isMember ? 1 : 0, groups) + setgid(1236) + setuid(1234) != 0) _exit(2);
      PosixFileSystem files;
      const std::unique_ptr<NewFile> file = files.Create(path, 0600);
      file->SetAttributes({mode, 1000, 1235, true});
      file->Publish();
    });
    ASSERT_EQ(saver.Join(), 0);
    EXPECT_EQ(StatusOf(path).st_gid, isMember ? 1235U : 1236U);
    EXPECT_EQ(StatusOf(path).st_mode & 07777, kept);
  }
}

TEST(SaveConfig, WorksWithoutProc) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can shut a process in";
  TempFolder jail;
  jail.Write("keplo.cfg", Config(""));
  ChildProcess saver([&] {
    if (chroot(jail.Path().c_str()) != 0) _exit(2);
    PosixFileSystem files;
    CfgStore store("/keplo.cfg", files);
    LoadConfig(store);
    SetGeneralValue(store, "ITYPE", "9");
  });
  EXPECT_EQ(saver.Join(), 0);
  EXPECT_EQ(jail.Read("keplo.cfg"), kFresh);
}

}  // namespace
}  // namespace keplo::tests
