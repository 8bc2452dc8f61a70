#include "config/protocol_edit.h"

#include <gtest/gtest.h>

#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/protocols.h"
#include "failure.h"

namespace keplo {
namespace {

using tests::Config;
using tests::kGeneral;
using tests::Lines;
using tests::Protocol;
using tests::Replaced;
using Texts = std::vector<std::string>;

const Texts kParameters = {"GPROTO= 2", "SENDPLS= 850", "REPEAT= 150", "BITG= 0",
                           "BIT0= 10",  "BIT1= 01",     "GREPEAT= 0"};

ProtocolDraft Draft() {
  ProtocolDraft draft;
  draft.Name = "Lamp";
  draft.Description = "By the window";
  draft.ProtoKind = 2;
  draft.Params.SENDPLS = 850;
  draft.Params.REPEAT = 150;
  draft.Params.BITG = "0";
  draft.Params.BIT0 = "10";
  draft.Params.BIT1 = "01";
  return draft;
}

std::string Section(const std::string& header, const std::string& description, Texts parameters) {
  parameters.insert(parameters.begin(), {header, description});
  return Lines(parameters);
}

/// A store over a file in memory.
class Stored {
 public:
  explicit Stored(const std::string& content) {
    Disk.Put("keplo.cfg", content);
    LoadConfig(Store);
  }
  std::string File() const { return Disk.Files()["keplo.cfg"]; }

  tests::FakeDisk Disk;
  CfgStore Store{"/home/keplo.cfg", Disk};
};

TEST(ProtocolEdit, AddsChangesAndDeletesASectionByteForByte) {
  const std::string mine = Protocol("Mine", {"G1010,POWER", "G1100,MUTE"});
  const std::string end = Protocol("Template", {"G10,EMPTY"}) + "[END]\r\n";
  Stored stored(kGeneral + mine + end);

  EXPECT_EQ(RefusalText(AddProtocol(stored.Store, Draft())), "");
  std::string general = kGeneral;
  general.replace(general.find("PROTOCOL= 0"), 11, "PROTOCOL= 1");
  const std::string lamp = Section("[Lamp]", "# By the window", kParameters) + Lines({"", "G10,EMPTY", ""});
  EXPECT_EQ(stored.File(), general + mine + lamp + end);
  EXPECT_EQ(stored.Store.CfgText, stored.File());

  ProtocolDraft changed = Draft();
  changed.Name = "Mine";
  changed.Description = {};
  changed.Params.REPEAT = 40;
  changed.Params.GREPEAT = -5;
  EXPECT_EQ(RefusalText(EditProtocol(stored.Store, changed)), "");
  Texts parameters = kParameters;
  parameters[2] = "REPEAT= 40";
  parameters[6] = "GREPEAT=-5";
  EXPECT_EQ(stored.File(), general + Section("[Mine]", "# ", parameters) +
                               Lines({"", "G1010,POWER", "G1100,MUTE", ""}) + lamp + end);

  EXPECT_EQ(RefusalText(DeleteProtocol(stored.Store, "mine")), "");
  EXPECT_EQ(stored.File(), kGeneral + lamp + end);
  EXPECT_EQ(RefusalText(DeleteProtocol(stored.Store, "Lamp")), "");
  EXPECT_EQ(stored.File(), kGeneral + end);
}

TEST(ProtocolEdit, RefusesANameForItsFirstFault) {
  const std::string text = Config(Protocol("NEC", {"G1010,POWER"}));
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Lamp", ""},
      {"abc", ""},
      {"Twelve-Chars", ""},
      {"a b", "Protocol name must contain only: a-z,A-Z,0-9,'-','_'"},
      {"a[", "Protocol name must contain only: a-z,A-Z,0-9,'-','_'"},
      {"ab", "Protocol name must have 3-12 characters"},
      {"", "Protocol name must have 3-12 characters"},
      {"Thirteen-Char", "Protocol name must have 3-12 characters"},
      {"nec", "The new protocol name is in use"},
      {"TEMPLATE", "The new protocol name is in use"},
      {"recorded", "The new protocol name is in use"},
      {"General", "The new protocol name is in use"},
      {"End", "The new protocol name is in use"},
  };
  for (const auto& [name, told] : cases) EXPECT_EQ(RefusalText(CheckProtocolName(text, name)), told) << name;
}

TEST(ProtocolEdit, RefusesParametersForTheirFirstFault) {
  ProtocolDraft draft = Draft();
  std::string told;
  const auto check = [&] { return told = RefusalText(CheckProtocolDraft(draft)); };
  // All faults at once: mending the one that is told brings up the next.
  draft.Description = "a, b [c] GPROTO= 1\r\n";
  draft.Params = {0, 15, "", "12", "x", 2, ""};
  EXPECT_EQ(check(), "SENDPLS must have an integer value greater than 0");
  draft.Params.SENDPLS = 1;
  EXPECT_EQ(check(), "REPEAT must have an integer value greater than 16 (or 0)");
  draft.Params.REPEAT = 16;
  EXPECT_EQ(check(), "GREPEAT must have an integer value greater than 16 (or 0 or 1)");
  draft.Params.GREPEAT = 15;
  EXPECT_EQ(check(), "GREPEAT must have an integer value greater than 16 (or 0 or 1)");
  draft.Params.GREPEAT = 90;
  EXPECT_EQ(check(), "BITx must not be empty, if no BITG, then BITG=0");
  draft.Params.BIT0 = "2";
  EXPECT_EQ(check(), "Description cannot contain \",\" character!");
  draft.Description = "a [c] GPROTO= 1\r\n";
  EXPECT_EQ(check(), "Description cannot contain \"[\" character!");
  draft.Description = "GPROTO= 1\r\n";
  EXPECT_EQ(check(), "Description must be a single line");
  draft.Description = "a gproto= 1";
  EXPECT_EQ(check(), "Description cannot contain \"GPROTO=\"!");
  draft.Description = "a # b";
  EXPECT_EQ(check(), "BITG must have a binary value");
  draft.Params.BITG = "1";
  EXPECT_EQ(check(), "BIT0 must have a binary value");
  draft.Params.BIT0 = "0";
  EXPECT_EQ(check(), "BIT1 must have a binary value");
  draft.Params.BIT1 = "01";
  EXPECT_EQ(check(), "");
  EXPECT_EQ(draft.Params.GREPEAT, 90) << "16 is no silence that the sync could share";
}

TEST(ProtocolEdit, LetsASyncRepeatAfterTheSilenceOfTheFrame) {
  struct Case {
    std::int16_t Repeat, GRepeat, Stored;
  };
  for (const Case& c : {Case{40, 90, 40}, {90, 40, 90}, {40, 16, 16}, {40, -5, -5}, {0, 90, 90}}) {
    ProtocolDraft draft = Draft();
    draft.Params.REPEAT = c.Repeat;
    draft.Params.GREPEAT = c.GRepeat;
    EXPECT_EQ(RefusalText(CheckProtocolDraft(draft)), "");
    EXPECT_EQ(draft.Params.GREPEAT, c.Stored) << c.Repeat << ' ' << c.GRepeat;
  }
}

TEST(ProtocolEdit, ReadsNoDamagedSection) {
  const std::string whole = Config(Protocol("Mine", {"G1010,POWER"}) + Protocol("Next", {"G1011,POWER"}));
  ASSERT_TRUE(LoadProtocol(whole, "mine"));
  for (const std::string name : {"General", "END", "Recorded", "None", ""}) {
    EXPECT_FALSE(LoadProtocol(whole, name)) << name;
    EXPECT_EQ(WithoutSection(whole, name).Refused, ProtocolRefusal::NoSection) << name;
  }
  const std::vector<std::pair<std::string, std::string>> damages = {
      {"# made", "made"},
      {"GPROTO= 0", "GPROTO= 4"},
      {"GPROTO= 0", "GPROTO=-1"},
      {"SENDPLS=", "SENDPULS="},
      {"BITG=", "BIT_G="},
      {"BIT1= 1000\r\n", ""},
      {"GREPEAT= 72", "GREPEAT= "},
      {"GREPEAT= 72", "GREPEAT= 72 slots"},
      {"GREPEAT= 72", "GREPEAT= 40000"},
  };
  for (const auto& [from, to] : damages) {
    std::string text = whole;
    text.replace(text.find(from), from.size(), to);
    EXPECT_FALSE(LoadProtocol(text, "Mine")) << to;
    ProtocolDraft draft = Draft();
    draft.Name = "Mine";
    EXPECT_EQ(EditedSection(text, draft).Refused, ProtocolRefusal::NoSection) << to;
    EXPECT_TRUE(LoadProtocol(text, "Next")) << to;
  }
}

TEST(ProtocolEdit, TakesNothingOfTheNextLineIntoAnEmptyDescription) {
  Stored stored(Replaced(Config(Protocol("Mine", {"G1010,POWER"})), "# made for a test", "#"));
  const ProtocolDraft read = LoadProtocol(stored.Store.CfgText, "Mine").value();
  EXPECT_EQ(read.Description, "");
  EXPECT_EQ(RefusalText(EditProtocol(stored.Store, read)), "");
  EXPECT_NE(stored.File().find("[Mine]\r\n# \r\nGPROTO= 0\r\n"), std::string::npos);
}

TEST(ProtocolEdit, CutsNothingButWholeLinesOfTheSectionThatIsRead) {
  using Refusal = ProtocolRefusal;
  const std::string mine = Protocol("Mine", {"G1010,POWER"});
  const auto joined = [&](std::string_view lineEnd) {
    std::string lines = mine;
    while (lines.find("\r\n") < lines.size()) lines = Replaced(lines, "\r\n", std::string(lineEnd));
    return lines;
  };
  const std::string oneLine = Replaced(joined(" "), "72  G", "72\r\nG") + "\r\n";
  struct Case {
    std::string Text;
    Refusal Add, Edit, Delete;
  };
  const std::vector<Case> cases = {
      {Config(mine), Refusal::None, Refusal::None, Refusal::None},
      {Config(joined("\n")), Refusal::LineEnds, Refusal::LineEnds, Refusal::None},
      {Config(joined("\r")), Refusal::LineEnds, Refusal::LineEnds, Refusal::HeaderLine},
      {Config(oneLine), Refusal::None, Refusal::HeaderLine, Refusal::None},
      {Replaced(Config(mine), "[Mine]", "[Mine] see [old]"), Refusal::None, Refusal::NoSection,
       Refusal::HeaderLine},
      {Replaced(Config(mine), "[Template]", "see [Template]"), Refusal::HeaderLine, Refusal::None,
       Refusal::None},
      {mine + Config(mine), Refusal::None, Refusal::SectionTwice, Refusal::SectionTwice},
      {Config(mine + Protocol("MINE", {"G1,A"})), Refusal::None, Refusal::SectionTwins,
       Refusal::SectionTwins},
      {Replaced(Config(mine), "[Template]", "Template]"), Refusal::NoTemplate, Refusal::HeaderMissing,
       Refusal::HeaderMissing},
      {Replaced(Config(mine), "BIT1=", "G1100,UP\r\nBIT1="), Refusal::None, Refusal::CommandAmongKeys,
       Refusal::None},
  };
  ProtocolDraft edited = Draft();
  edited.Name = "Mine";
  for (const Case& c : cases) {
    EXPECT_EQ(NewSection(c.Text, Draft()).Refused, c.Add) << c.Text;
    EXPECT_EQ(EditedSection(c.Text, edited).Refused, c.Edit) << c.Text;
    EXPECT_EQ(WithoutSection(c.Text, "Mine").Refused, c.Delete) << c.Text;
  }
  EXPECT_EQ(EditedSection(cases.back().Text, edited).Refused.Line, 16);
  for (const std::string header : {"[A][Mine]", "[[A]Mine]", "# [A]\r\nsee [Mine]"}) {
    const std::string text = Replaced(Config(mine), "[Mine]", header);
    EXPECT_EQ(WithoutSection(text, ListProtocols(text)[1]).Refused, Refusal::HeaderLine) << header;
  }
  const std::string text = Replaced(Config(mine), "[Template]", "G10,LAST[Template]");
  EXPECT_EQ(WithoutSection(text, "Mine").Refused, Refusal::HeaderLine);
}

TEST(ProtocolEdit, ChangesNothingThatItCannotSave) {
  const std::string before = Config(Protocol("Mine", {"G1010,POWER"}));
  Stored stored(before);
  ProtocolDraft tooLong = Draft();
  tooLong.Params.BITG = std::string(kMostCharacters, '1');
  EXPECT_THROW(AddProtocol(stored.Store, tooLong), Failure);
  EXPECT_EQ(stored.Store.CfgText, before);
  stored.Disk.FailAt(1, /*forGood=*/true);
  EXPECT_THROW(AddProtocol(stored.Store, Draft()), Failure);
  EXPECT_THROW(DeleteProtocol(stored.Store, "Mine"), Failure);
  EXPECT_EQ(stored.Store.CfgText, before);
  EXPECT_EQ(stored.File(), before);
}

}  // namespace
}  // namespace keplo
