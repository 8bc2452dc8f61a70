#include <gtest/gtest.h>

#include <functional>

#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/learn.h"
#include "config/protocol_edit.h"
#include "config/raw_lookup.h"
#include "config/store_undo.h"
#include "signal/raw/raw_send.h"

namespace keplo::tests {
namespace {

const std::string kFile = "AC.mode2";

/// A signal of three lengths of space.
RawSignal Signal(const std::string& spaces) {
  RawLengths lengths = {3300, 1650};
  for (const char space : spaces) lengths.insert(lengths.end(), {440, 440 + 660 * (space - '0')});
  lengths.push_back(440);
  SignalState state;
  state.Samples.Read(CaptureOfLengths(lengths));
  RawLesson lesson;
  lesson.Hear(HeardIn(state));
  return MakeRawSignal("", lesson.Forms());
}

const RawSignal kCool = Signal("012021102201"), kHeat = Signal("012021102200");

/// What the monitor makes of a signal that no analysis reads.
std::string Heard(const CfgStore& store, const RawSignal& signal) {
  SignalState state;
  state.Samples.Read(CaptureOfLengths(signal.Forms.front()));
  MonitorReading reading(Stage::Unknown);
  MatchRawCommands(store, state, reading);
  return reading.HasCode() ? FindCommand(store.CfgText, reading.Digits, 0, *reading.ReadBy)->Command : "";
}

class RawStored : public ::testing::Test {
 protected:
  Stored stored_{Config(Protocol("AC", {"G10,EMPTY"}))};
  CfgStore& store_ = stored_.Store;

  void Learn(const RawSignal& signal, const std::string& name) {
    ASSERT_TRUE(AddRawCommand(store_, "AC", signal, name).Done());
  }
  /// The files as another program reads them.
  std::unique_ptr<CfgStore> Reread() {
    auto fresh = std::make_unique<CfgStore>(store_.Path, stored_.Disk);
    LoadConfig(*fresh);
    return fresh;
  }
};

TEST_F(RawStored, KeepsLengthsInStepWithCodeLines) {
  StoreUndo undo(store_);
  Learn(kCool, "COOL");
  Learn(kHeat, "HEAT");
  EXPECT_EQ(AddRawCommand(store_, "AC", kCool, "COLD").Detail, "COOL") << "one that fits is stored already";
  EXPECT_EQ(AddRawCommand(store_, "AC", kCool, "COLD").Reason, "It is a command of the protocol AC.");
  std::string state;
  while (state.size() < 200) state += "012";
  Learn(Signal(state + "12"), "TIMER");
  EXPECT_NE(AddRawCommand(store_, "AC", Signal(state + "21"), "LATER")
                .Reason.find("only after the first 0.22 seconds"),
            std::string::npos);
  EXPECT_EQ(Heard(*Reread(), kCool), "COOL");
  EXPECT_EQ(Heard(*Reread(), kHeat), "HEAT");
  EXPECT_TRUE(RenameCommand(store_, "AC", "COOL", "ICE").Done());
  EXPECT_EQ(Heard(*Reread(), kCool), "ICE");
  EXPECT_TRUE(DeleteCommand(store_, "AC", "ICE").Done());
  EXPECT_EQ(Heard(store_, kCool), "");
  EXPECT_EQ(stored_.Disk.Files()[kFile].find(kCool.Digits), std::string::npos);
  undo.Begin();
  EXPECT_TRUE(DeleteProtocol(store_, "AC").Done());
  undo.End();
  EXPECT_EQ(stored_.Disk.Files().count(kFile), 0U);
  EXPECT_EQ(undo.Undo(), "");
  EXPECT_EQ(Heard(*Reread(), kHeat), "HEAT") << "lengths come back with their line";
}

TEST_F(RawStored, ReportsTwoThatAreTooSimilar) {
  RawSignal other = kCool, between = kCool;
  other.Digits = kHeat.Digits;
  for (const auto& [place, longer] : {std::pair(7U, 140), {11, -140}}) {
    other.Forms[0][place] += longer;
    between.Forms[0][place] += longer / 2;
  }
  Learn(kCool, "COOL");
  Learn(other, "ICE");
  for (const auto& [signal, alike] : {std::pair(kCool, false), {other, false}, {between, true}}) {
    SignalState state;
    state.Samples.Read(CaptureOfLengths(signal.Forms.front()));
    const std::string reported = AmbiguousRawText(store_, state);
    EXPECT_EQ(reported.find("AC&COOL") != reported.find("AC&ICE"), alike) << reported;
    EXPECT_EQ(Heard(store_, signal).empty(), alike);
  }
}

TEST_F(RawStored, AreHeardInTwoTapsOfOneCapture) {
  const auto twice = [](RawSignal signal, int pause, const RawSignal& other) {
    RawLengths& form = signal.Forms.front();
    form.push_back(pause);
    form.insert(form.end(), other.Forms[0].begin(), other.Forms[0].end());
    return signal;
  };
  Learn(twice(kCool, 40'000, kCool), "COOL");
  EXPECT_EQ(Heard(store_, twice(kCool, 90'000, kCool)), "COOL");
  EXPECT_EQ(Heard(store_, twice(kCool, 90'000, kHeat)), "");
  EXPECT_EQ(Heard(store_, twice(kCool, 55'000, kCool)), "") << "parts of a message";
}

TEST_F(RawStored, ReloadsNewLengthsOfTheSameDigits) {
  Learn(kCool, "COOL");
  const std::string old = stored_.Disk.Files()[kFile];
  const auto running = Reread();
  DeleteCommand(store_, "AC", "COOL");
  stored_.Disk.Put(kFile, old);  // as after a kill
  RawSignal better = kCool;
  better.Forms[0][0] += 500;
  Learn(better, "COOL");
  ASSERT_TRUE(HasFileChanged(*running));
  EXPECT_EQ(ReloadConfig(*running), Reload::NothingNew) << "the code line is the one that it was";
  EXPECT_FALSE(HasFileChanged(*running));
  const auto fresh = Reread();
  for (const CfgStore* store : {fresh.get(), running.get()}) {
    EXPECT_EQ(FindRawSignal(*store, "G" + kCool.Digits)->Forms, better.Forms);
  }
}

TEST_F(RawStored, KeepsLengthsUsedByAConflictCopy) {
  Learn(kCool, "COOL");
  ASSERT_TRUE(AddRawCommand(*Reread(), "AC", kHeat, "HEAT").Done());
  AddCommand(store_, "AC", "G1100", "DRY");
  ASSERT_NE(store_.ConflictCopy, "") << "two lines in one place";
  DeleteCommand(store_, "AC", "COOL");
  EXPECT_NE(stored_.Disk.Files()[kFile].find(kHeat.Digits), std::string::npos);
  stored_.Disk.Remove(store_.ConflictCopy);
  Learn(kCool, "COOL");
  EXPECT_EQ(stored_.Disk.Files()[kFile].find(kHeat.Digits), std::string::npos);
}

/// Something happens ahead of an operation on the files.
struct MeddledFiles : SteppedFiles {
  using SteppedFiles::SteppedFiles;
  void Step() override {
    if (--Ahead == 0) Meddle();
  }
  int Ahead = 0;
  std::function<void()> Meddle;
};

TEST_F(RawStored, RestoresLengthsWithALineThatAnotherProgramHasDeleted) {
  Learn(kCool, "COOL");
  MeddledFiles files(stored_.Disk);
  CfgStore writer(store_.Path, files);
  LoadConfig(writer);
  files.Ahead = 2;  // after the look at what is to be replaced
  files.Meddle = [&] { DeleteCommand(store_, "AC", "COOL"); };
  EXPECT_TRUE(AddCommand(writer, "AC", "G1100", "DRY").Done());
  EXPECT_NE(writer.ConflictCopy, "") << "two lines in one place";
  EXPECT_EQ(Heard(*Reread(), kCool), "COOL");
}

TEST(RawStoredUnderAnyName, KeepsLengthsOfASectionWhoseNameIsNoFileName) {
  Stored stored{Config(Protocol("../A C", {"G10,EMPTY"}))};
  ASSERT_TRUE(AddRawCommand(stored.Store, "../A C", kCool, "COOL").Done());
  EXPECT_EQ(stored.Disk.Files().count("%2E%2E%2FA%20C.mode2"), 1U);
  CfgStore fresh(stored.Store.Path, stored.Disk);
  LoadConfig(fresh);
  EXPECT_EQ(Heard(fresh, kCool), "COOL");
}

TEST_F(RawStored, LosesOnlyTheDamagedCommand) {
  Learn(kCool, "COOL");
  Learn(kHeat, "HEAT");
  const std::string whole = stored_.Disk.Files()[kFile];
  const std::size_t cool = whole.find("# G" + kCool.Digits), heat = whole.find("# G" + kHeat.Digits);
  struct Row {
    std::string Name, Text, Cool, Heat;
  };
  const std::string changed = Replaced(whole.substr(cool), "1650", "1640");
  for (const Row& row : {Row{"whole", whole, "COOL", "HEAT"},
                         {"without its last line feed", whole.substr(0, whole.size() - 1), "COOL", "HEAT"},
                         {"missing", "", "", ""},
                         {"a length changed", whole.substr(0, cool) + changed, "", "HEAT"},
                         {"cut short", whole.substr(0, whole.size() - 30), cool < heat ? "COOL" : "",
                          cool < heat ? "" : "HEAT"}}) {
    stored_.Disk.Put(kFile, row.Text);
    const auto fresh = Reread();
    EXPECT_EQ(Heard(*fresh, kCool), row.Cool) << row.Name;
    EXPECT_EQ(Heard(*fresh, kHeat), row.Heat) << row.Name;
    std::string reported;
    for (const std::string& damage : fresh->Raw.Damage) reported += damage;
    EXPECT_EQ(reported.find("COOL") == std::string::npos, !row.Cool.empty()) << row.Name << reported;
    EXPECT_EQ(reported.find("HEAT") == std::string::npos, !row.Heat.empty()) << row.Name << reported;
    stored_.Disk.Put(kFile, whole);
    ReloadConfig(*fresh);
    EXPECT_TRUE(fresh->Raw.Damage.empty()) << row.Name << ", and mended";
  }
}

/// Learns or deletes a command on a disk that fails for good at an operation, and then has a power cut.
TEST_F(RawStored, HasNoCodeLineWithoutLengthsAfterAPowerCut) {
  Learn(kCool, "COOL");
  const std::map<std::string, std::string> one = stored_.Disk.Files();
  Learn(kHeat, "HEAT");
  const std::map<std::string, std::string> two = stored_.Disk.Files();
  for (const bool learns : {true, false}) {
    int operations = 1;
    for (int failAt = 0; failAt <= operations; ++failAt) {
      for (const UnflushedNames names : {UnflushedNames::Lost, UnflushedNames::Kept}) {
        stored_.Disk.PowerCut(names);
        for (const auto& [name, content] : stored_.Disk.Files()) stored_.Disk.Remove(name);
        for (const auto& [name, content] : learns ? one : two) stored_.Disk.Put(name, content);
        const auto writer = Reread();
        stored_.Disk.FailAt(failAt, true);
        try {
          if (learns) AddRawCommand(*writer, "AC", kHeat, "HEAT");
          if (!learns) DeleteCommand(*writer, "AC", "HEAT");
        } catch (const Failure&) {
          EXPECT_GT(failAt, 0);
        }
        if (failAt == 0) operations = stored_.Disk.Operations();
        stored_.Disk.PowerCut(names);
        const auto fresh = Reread();
        EXPECT_TRUE(fresh->Raw.Damage.empty()) << failAt;
        EXPECT_TRUE(fresh->CfgText == one.at("keplo.cfg") || fresh->CfgText == two.at("keplo.cfg")) << failAt;
        EXPECT_EQ(Heard(*fresh, kCool), "COOL") << failAt;
        EXPECT_EQ(Heard(*fresh, kHeat).empty(), fresh->CfgText == one.at("keplo.cfg")) << failAt;
      }
    }
    EXPECT_GT(operations, 10);
  }
}

}  // namespace
}  // namespace keplo::tests
