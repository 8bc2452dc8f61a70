#include "remotes/import_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "config/check_config.h"
#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/learn.h"
#include "config/lookup.h"
#include "config/protocols.h"
#include "config/sections.h"
#include "failure.h"
#include "formats/irp.h"
#include "remote_builder.h"
#include "remotes/keys_named.h"
#include "remotes/stored_remote.h"

namespace keplo::tests {
namespace {

const std::string kEmpty = Config("");
const std::string kOld = Protocol("Old", {"G1010,X"});

/// An import and the files that it is of.
struct Imported {
  std::vector<ImportedFile> Files;
  ImportPlan Plan;

  Imported(const std::string& text, std::vector<ImportedFile> files, const ImportWishes& wishes = {})
      : Files(std::move(files)), Plan(PlanImport(text, Files, wishes)) {}
};

/// What an import tells of its keys, a line each.
std::string Told(const ImportPlan& plan) {
  std::string told;
  for (const PlannedKey& key : plan.Keys) {
    told += key.Key->Name.value_or("?") + " -> " + key.Reference() + (key.Reason.empty() ? "" : " ") +
            key.Reason + "\n";
  }
  return told;
}

/// Finds each new command as a user, the window and the monitor do, and deletes it.
void ExpectHolds(const ImportPlan& plan) {
  ASSERT_TRUE(HasWholeSections(plan.Text)) << plan.Text;
  for (const PlannedKey& key : plan.Keys) {
    if (key.Fate != KeyFate::Stored) continue;
    SCOPED_TRACE(key.Reference());
    const auto found = FindCommand(plan.Text, key.Digits(), 100);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->Protocol + "&" + found->Command, key.Reference());
    EXPECT_EQ(ShownCode(plan.Text, key.Section, key.Name), "G" + key.Digits());
    const int first = FindNoCase(key.Name, plan.Text, FindSection(plan.Text, key.Section)->Begin);
    EXPECT_EQ(plan.Text.substr(static_cast<std::size_t>(first) - 1, 2), "\r\n");
    Stored stored(plan.Text);
    ASSERT_TRUE(DeleteCommand(stored.Store, key.Section, key.Name).Done());
    EXPECT_FALSE(FindCommand(stored.File(), key.Digits(), 100).has_value());
  }
}

TEST(ImportPlan, MakesASectionOfARemoteAheadOfTheTemplate) {
  const Imported imported(Config(kOld),
                          File("Samsung TV-00580A", {Key("POWER", Digits(1)), Key("VOL+", Digits(2))}));
  const ImportPlan& plan = imported.Plan;
  const std::string section =
      Lines({"[Samsung_TV-0]", "# Samsung TV-00580A", "GPROTO= 0", "SENDPLS= 562", "REPEAT= 0",
             "BITG= 111111111111111100000000", "BIT0= 10", "BIT1= 1000", "GREPEAT= 65", "",
             "G" + Digits(1) + ",POWER", "G" + Digits(2) + ",VOL_", ""});
  EXPECT_EQ(plan.Text, Config(kOld + section));
  EXPECT_EQ(plan.Needed, section.size());
  EXPECT_EQ(plan.Free, 32'767 - Config(kOld).size());
  ExpectHolds(plan);
}

TEST(ImportPlan, GivesNamesThatHold) {
  for (const auto& [names, given] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"VOL_UP", "UP", "OK"}, "UP VOL_UP OK"},
           {{"1", "10", "101", "G"}, "KEY_1 KEY_10 KEY_101 KEY_G"},
           {{"REPEAT", "bit", "8", "56"}, "KEY_REPEAT KEY_bit 8 KEY_56"},
           {{"ok", "OK", "Ok", "KEY_OK"}, "ok OK_2 Ok_3 KEY_OK"},
           {{"1", "KEY_1", "1"}, "KEY_1 KEY_1_2 KEY_1_3"},
           {{" Vol + ", "Entrée", "EMPTY", "-"}, "Vol__ Entr_e KEY_EMPTY -"},
           {{"Громкость", "音量", ""}, "KEY_1 KEY_2 KEY_3"},
           {{"A_X_C", "X_C", "C", "X"}, "X C X_C A_X_C"}}) {
    const Imported imported(kEmpty, Named(names));
    EXPECT_EQ(Commands(imported.Plan.Text, "Mine"), given);
    ExpectHolds(imported.Plan);
  }
  EXPECT_EQ(Told(Imported(kEmpty, Named({"1", "VOL+"})).Plan),
            "1 -> Mine&KEY_1 renamed from \"1\": that would be found elsewhere in the section\n"
            "VOL+ -> Mine&VOL_ renamed from \"VOL+\": a name has letters, digits, - and _\n");
}

TEST(ImportPlan, GivesSectionsNamesOfTheirOwn) {
  const std::string text = Config(Protocol("Mine", {"G1010,X"}) + Protocol("TwelveLetter", {"G1011,X"}));
  for (const auto& [remote, section] :
       std::vector<std::pair<std::string, std::string>>{{"mine", "mine-2"},
                                                        {"TwelveLetters", "TwelveLett-2"},
                                                        {"TV", "TV-1"},
                                                        {"Template", "Template-2"},
                                                        {"end", "end-2"},
                                                        {"Пульт", "Remote"},
                                                        {"A / B_(C)", "A_B_C"},
                                                        {"Eleven_letr_s", "Eleven_letr"}}) {
    EXPECT_EQ(PlanImport(text, File(remote, {Key("ON", Digits(1))}), {}).Sections.front(), section);
  }
}

TEST(ImportPlan, MakesASectionForEachWayOfSending) {
  std::vector<RemoteKey> keys = {
      Key("A1", Digits(1)),         Key("B1", "101010010000", "SONY"),    Key("A2", Digits(2)),
      Key("C1", Digits(3), "NEC2"), Key("B2", "101010010001010", "SONY"), Key("A3", Digits(4))};
  keys[5].Coded->Again.Kind = RepeatKind::Unknown;
  const Imported imported(kEmpty, File("Mine", keys));
  const ImportPlan& plan = imported.Plan;
  EXPECT_EQ(
      Commands(plan.Text, "Mine") + "|" + Commands(plan.Text, "Mine-2") + "|" + Commands(plan.Text, "Mine-3"),
      "A1 A2 A3|B1 B2|C1");
  EXPECT_NE(plan.Text.find("\r\nCARRIER= 40000\r\n\r\nG101010010000,B1"), std::string::npos) << plan.Text;
  ExpectHolds(plan);
}

TEST(ImportPlan, TellsCodesThatMeet) {
  const std::string text =
      Config(Protocol("Old", {"G1" + std::string(30, '0') + "1,POWER", "G101010010000,TV"}));
  std::vector<RemoteKey> keys = {Key("P", "1" + std::string(30, '0') + "1"),
                                 Key("V", Digits(1)),
                                 Key("W", Digits(1)),
                                 Key("Long", "101010010000111", "SONY"),
                                 Key("Short", "10101001000", "SONY"),
                                 Key("Few", "1010", "SONY")};
  const auto files = File("Mine", keys);
  EXPECT_EQ(Told(PlanImport(text, files, {})),
            "P -> Old&POWER known: the code is that of Old&POWER\n"
            "V -> Mine&V\n"
            "W -> Mine&V known: the code is that of Mine&V\n"
            "Long ->  shadowed: the code begins with that of Old&TV\n"
            "Short ->  shadowed: the code is the beginning of that of Old&TV\n"
            "Few ->  a code of 4 digits is too short; expected 5 or more\n");
  const ImportPlan all =
      PlanImport(text, files, {.Section = {}, .Shadowed = true, .Raw = nullptr, .Wants = {}});
  EXPECT_EQ(all.Count(KeyFate::Stored), 3U);
  EXPECT_EQ(Commands(all.Text, "Mine-2"), "Long Short");
}

TEST(ImportPlan, PutsKeysIntoASectionThatSendsThem) {
  const std::string mine =
      Replaced(Replaced(Protocol("Mine", {"G10,EMPTY"}), "BITG= 1100", "BITG= 111111111111111100000000"),
               "560", "570");
  const auto files =
      File("Other", {Key("1", Digits(1)), Key("test", Digits(2)), Key("S", "101010010000", "SONY")});
  const ImportPlan plan =
      PlanImport(Config(mine), files, {.Section = "Mine", .Shadowed = false, .Raw = nullptr, .Wants = {}});
  EXPECT_EQ(Commands(plan.Text, "Mine"), "KEY_1 KEY_test") << "test is a word of the description";
  EXPECT_EQ(plan.Keys[2].Reason, "the patterns of [Mine] do not send it");
  auto other = File("Other", {Key("Quiet", Digits(3), "NEC2")});
  other.front().Remotes.front().Keys.front().Carrier = 56'000;
  EXPECT_EQ(
      PlanImport(Config(mine), other, {.Section = "Mine", .Shadowed = false, .Raw = nullptr, .Wants = {}})
          .Keys.front()
          .Reason,
      "[Mine] sends it on 38000 Hz, and the file says 56000; [Mine] repeats it by \"short\", and the file "
      "says \"frame\"");
  ExpectHolds(plan);
  for (const char* section : {"Template", "Recorded", "Nobody"}) {
    EXPECT_THROW(
        PlanImport(kEmpty, files, {.Section = section, .Shadowed = false, .Raw = nullptr, .Wants = {}}),
        Failure)
        << section;
  }
}

TEST(ImportPlan, KeepsTheLengthsOfWhatNoDigitsSay) {
  RemoteKey cool;
  cool.Name = "Cool";
  cool.Carrier = 38'000;
  for (int i = 0; i < 40; ++i)
    cool.Lengths.insert(cool.Lengths.end(), {i % 5 == 0 ? 1200 : 450, i % 3 == 0   ? 1300
                                                                      : i % 2 == 0 ? 900
                                                                                   : 420});
  cool.Toggled = PulseTrain(cool.Lengths.rbegin(), cool.Lengths.rend());
  RemoteKey again = cool;
  again.Name = "Again";
  for (std::size_t i = 0; i < again.Lengths.size(); ++i) again.Lengths[i] += i % 4 < 2 ? 20 : -20;
  const Imported imported(kEmpty, File("Mine", {Key("POWER", Digits(1)), cool, again}));
  EXPECT_EQ(imported.Plan.Keys[2].Reason, "known: the code is that of Mine&Cool");
  Stored stored(kEmpty);
  StoreImport(stored.Store, imported.Plan);
  EXPECT_EQ(Commands(stored.File(), "Mine"), "POWER Cool");
  CfgStore read(stored.Store.Path, stored.Disk);
  LoadConfig(read);
  const Remote remote = RemoteOfSection(read.CfgText, "Mine", {}, &read.Raw);
  cool.Lengths.pop_back();
  cool.Toggled.pop_back();
  EXPECT_EQ(remote.Keys[1].Lengths, cool.Lengths);
  EXPECT_EQ(remote.Keys[1].Toggled, cool.Toggled);
  const auto files = File("Mine", {cool});
  EXPECT_EQ(PlanImport(read.CfgText, files, {.Section = {}, .Shadowed = false, .Raw = &read.Raw, .Wants = {}})
                .Keys.front()
                .Reason,
            "known: the code is that of Mine&Cool");
}

TEST(ImportPlan, TellsWhatIsNotHeardUnderItsName) {
  const auto raw = [](const char* name, PulseTrain lengths) {
    RemoteKey key;
    key.Name = name;
    key.Lengths = std::move(lengths);
    return key;
  };
  PulseTrain noise;
  for (int i = 0; i < 40; ++i) noise.insert(noise.end(), {i % 3 == 0 ? 1216 : i % 3 == 1 ? 1064 : 957, 1188});
  const Imported imported(
      kEmpty, File("Mine", {Key("ON", Digits(1)), raw("OFF", FrameLengths(*Key("", Digits(1)).Coded)),
                            raw("VOL", FrameLengths(*Key("", Digits(2)).Coded)), Key("UP", Digits(2)),
                            raw("LAMP", noise), Key("SOME", std::string(16, '1'), "JVC")}));
  EXPECT_EQ(Told(imported.Plan),
            "ON -> Mine&ON\n"
            "OFF -> Mine&ON known: the code is that of Mine&ON\n"
            "VOL -> Mine&VOL\n"
            "UP -> Mine&VOL known: the code is that of Mine&VOL\n"
            "LAMP -> Mine&LAMP it can be sent, but not heard: the receiver takes it for noise or for pieces\n"
            "SOME -> Mine-2&SOME it can be sent; to have it heard as well, learn it from the remote\n");
  const auto more = File("Other", {Key("MORE", std::string(16, '0'), "JVC")});
  EXPECT_EQ(Told(PlanImport(imported.Plan.Text, more,
                            {.Section = "Mine-2", .Shadowed = false, .Raw = nullptr, .Wants = {}})),
            "MORE -> Mine-2&MORE it can be sent; to have it heard as well, learn it from the remote\n");
}

/// Codes and line SENDAS= of what a remote becomes that names its keys by protocols.
TEST(ImportPlan, TakesAsOneCodeWhatTheReceiverDoes) {
  struct Row {
    ProtocolValues Values;
    const char *Protocol, *Code, *SendAs;
  };
  for (const Row& row : {Row{{5, -1, 12},
                             "RC6",
                             "10000000010100001100",
                             "GREPEAT= 189\r\nSENDAS= RC6\r\nCARRIER= 36000\r\n\r\n"},
                         Row{{5, -1, 12}, "Denon", "", "\r\n\r\nG"}}) {
    RemoteKey key;
    ASSERT_EQ(TakeValues(row.Protocol, row.Values, key), "");
    key.Name = "ON";
    const Imported imported(kEmpty, File("Mine", {key, key}));
    const ImportPlan& plan = imported.Plan;
    EXPECT_EQ(plan.Keys[0].Digits() + plan.Keys[0].Reason, row.Code) << row.Protocol;
    EXPECT_NE(plan.Text.find(row.SendAs), std::string::npos) << plan.Text;
    EXPECT_EQ(plan.Keys[1].Reason, "known: the code is that of Mine&ON");
    EXPECT_TRUE(plan.NeedsSecondLook());
  }
}

TEST(ImportPlan, TellsWhatACodeDoesNotKeep) {
  const std::string head =
      "begin remote\nbits 16\nheader 9000 4500\none 560 1690\nzero 560 560\nptrail 560\n";
  const auto remote = [&](const std::string& rest, const std::string& codes) {
    return head + rest + "\nbegin codes\n" + codes + "\nend codes\nend remote\n";
  };
  const std::string text = remote("name T\ngap 40000\ntoggle_bit_mask 4", "KEY_A 0xA5\nKEY_B 0xC2 0xB1") +
                           remote("name H\ngap 40000\nrepeat 9000 2250\nflags REPEAT_HEADER", "KEY_C 0x3A7") +
                           remote("name S\ngap 40000\nrepeat 4500 2250", "KEY_D 0x15B");
  const std::vector<ImportedFile> files = {{"x", ReadRemotes(text, "x").Remotes}};
  const std::string toggle =
      " the remote turns digit 14 over with each press, and one of both codes is stored\n";
  EXPECT_EQ(Told(PlanImport(kEmpty, files, {})),
            "KEY_A -> T-1&KEY_A" + toggle + "KEY_B -> T-2&KEY_B" + toggle +
                "KEY_C -> H-1&KEY_C a short repeat with a header or a lead ahead is not kept\n"
                "KEY_D -> S-1&KEY_D its short repeat is of lengths that no section has, and is not kept\n");
}

/// The digits of the first of two frames.
std::string FirstOf(const RemoteKey& key) {
  return ReadDigits({key.Lengths.begin(), std::find_if(key.Lengths.begin(), key.Lengths.end(),
                                                       [](int length) { return length > 20'000; })})
      ->Digits;
}

TEST(ImportPlan, SendsFirstWhatTheFileHasFirst) {
  std::string text = kEmpty;
  std::map<std::string, std::string> first;
  unsigned number = 0;
  for (const std::string section : {"", "Mine"}) {
    std::vector<RemoteKey> keys;
    for (const char* name : {"ON", "OFF", "UP", "VOL"}) {  // whose digits are in either order
      RemoteKey& key = keys.emplace_back(Key(name + section, Digits(++number)));
      key.Lengths = FrameLengths(*key.Coded);
      key.Lengths.push_back(25'000);
      const PulseTrain second = FrameLengths(*Key(name, Digits(number + 100)).Coded);
      key.Lengths.insert(key.Lengths.end(), second.begin(), second.end());
      key.Coded.reset();
      first[*key.Name] = FirstOf(key);
    }
    const auto files = File("Mine", keys);
    text = PlanImport(text, files, {.Section = section, .Shadowed = false, .Raw = nullptr, .Wants = {}}).Text;
    const Remote remote = RemoteOfSection(text, "Mine", {});
    ASSERT_EQ(remote.Keys.size(), number);
    for (const RemoteKey& sent : remote.Keys) EXPECT_EQ(FirstOf(sent), first[*sent.Name]) << *sent.Name;
  }
}

TEST(ImportPlan, KeepsTheProtocolThatTheWindowStartsWith) {
  const Imported imported(Replaced(Config(kOld), "PROTOCOL= 0", "PROTOCOL= 1"), Named({"A", "B"}));
  EXPECT_NE(imported.Plan.Text.find("PROTOCOL= 2\r\n"), std::string::npos) << "of Template";
}

TEST(ImportPlan, TakesKeysOfSomeNames) {
  for (const auto& [list, taken] :
       std::vector<std::pair<std::string, std::string>>{{"power, vol*", "Power Vol_up VOL"},
                                                        {"*", "Power Vol_up VOL P"},
                                                        {"?", "P"},
                                                        {"*o*r", "Power"},
                                                        {"x,,", ""}}) {
    ImportWishes wishes;
    wishes.Wants = KeysNamed(list);
    std::string names;
    const auto files = Named({"Power", "Vol_up", "VOL", "P"});
    for (const PlannedKey& key : PlanImport(kEmpty, files, wishes).Keys)
      names += (names.empty() ? "" : " ") + *key.Key->Name;
    EXPECT_EQ(names, taken) << list;
  }
}

}  // namespace
}  // namespace keplo::tests
