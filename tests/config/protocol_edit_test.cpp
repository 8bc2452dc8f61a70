#include "config/protocol_edit.h"

#include <gtest/gtest.h>

#include <map>

#include "config/config_builder.h"
#include "config/fake_disk.h"
#include "config/learn.h"
#include "config/protocols.h"

namespace keplo::tests {
namespace {

const Texts kParameters = {"GPROTO= 2", "SENDPLS= 850", "REPEAT= 150", "BITG= 0",
                           "BIT0= 10",  "BIT1= 01",     "GREPEAT= 0"};

ProtocolDraft Draft(const std::string& name = "Lamp") {
  return {
      name,
      "By the window",
      2,
      {.SENDPLS = 850, .REPEAT = 150, .BIT0 = "10", .BIT1 = "01", .BITG = "0", .GREPEAT = 0, .BitTail = ""}};
}

std::string Section(const std::string& header, const std::string& description, Texts parameters) {
  parameters.insert(parameters.begin(), {header, description});
  return Lines(parameters);
}

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

  ProtocolDraft changed = Draft("Mine");
  changed.Description = {};
  changed.Params.REPEAT = 40;
  changed.Params.GREPEAT = -5;
  EXPECT_EQ(RefusalText(EditProtocol(stored.Store, changed)), "");
  Texts parameters = kParameters;
  parameters[2] = "REPEAT= 40";
  parameters[6] = "GREPEAT=-5";
  EXPECT_EQ(stored.File(), general + Section("[Mine]", "# ", parameters) +
                               Lines({"", "G1010,POWER", "G1100,MUTE", ""}) + lamp + end);

  stored.Load(Replaced(stored.File(), "[Mine]\r\n# \r\n", "[Mine]\r\n#\r\n"));
  const ProtocolDraft read = LoadProtocol(stored.Store.CfgText, "Mine").value();
  EXPECT_EQ(read.Description, "") << "and nothing of the next line";
  EXPECT_EQ(RefusalText(DeleteProtocol(stored.Store, "mine")), "");
  EXPECT_EQ(stored.File(), kGeneral + lamp + end);
  EXPECT_EQ(RefusalText(DeleteProtocol(stored.Store, "Lamp")), "");
  EXPECT_EQ(stored.File(), kGeneral + end);
}

TEST(ProtocolEdit, DropsAPeriodThatNewSilencesContradict) {
  const std::string mine = Replaced(Protocol("Mine", {"G1010,POWER"}), "GREPEAT= 72\r\n",
                                    "GREPEAT= 72\r\nSENDAS= PERIOD192 16\r\n");
  Stored stored(Config(mine));
  ProtocolDraft draft = *LoadProtocol(stored.File(), "Mine");
  draft.Params.BIT1 = "100000";
  EXPECT_EQ(RefusalText(EditProtocol(stored.Store, draft)), "");
  ExpectPart(stored.File(), Lines({"GREPEAT= 72", "SENDAS= PERIOD192 16", ""}));
  draft.Params.GREPEAT = 80;
  EXPECT_EQ(RefusalText(EditProtocol(stored.Store, draft)), "");
  ExpectPart(stored.File(), Lines({"GREPEAT= 80", "SENDAS= 16", ""}));
}

TEST(ProtocolEdit, LeavesTheCarrierOfASectionAlone) {
  const std::string mine =
      Replaced(Protocol("Mine", {"G1010,POWER"}), "GREPEAT= 72\r\n", "GREPEAT= 72\r\nCARRIER= 36000\r\n");
  Stored stored(Config(mine + Protocol("Other", {"G1100,MUTE"})));
  const auto carrier = [](const std::string& text, std::string_view protocol) {
    ProtocolParams params;
    std::int16_t kind = 0;
    EXPECT_TRUE(LoadProtocolParams(text, protocol, params, kind));
    return params.Carrier;
  };
  EXPECT_EQ(carrier(stored.File(), "Other"), 38'000);
  EXPECT_EQ(RefusalText(EditProtocol(stored.Store, Draft("Mine"))), "");
  EXPECT_TRUE(DeleteCommand(stored.Store, "Mine", "POWER").Done());
  EXPECT_TRUE(AddCommand(stored.Store, "Mine", "G1111", "PLAY").Done());
  EXPECT_EQ(RefusalText(EditProtocol(stored.Store, Draft("Mine"))), "");
  ExpectPart(stored.File(), Lines({"GREPEAT= 0", "CARRIER= 36000", "", "G1111,PLAY", ""}));
  EXPECT_EQ(carrier(stored.File(), "mine"), 36'000);
  for (const auto& [value, hertz] :
       std::map<std::string, int>{{"= 0", 0}, {"= 90000", 90'000}, {"=455000", 455'000}, {"= x", 38'000}}) {
    EXPECT_EQ(carrier(Replaced(stored.File(), "= 36000", value), "Mine"), hertz) << value;
  }
}

TEST(ProtocolEdit, ReadsNoDamagedSection) {
  const std::string whole = Config(Protocol("Mine", {"G1010,POWER"}) + Protocol("Next", {"G1011,POWER"}));
  ASSERT_TRUE(LoadProtocol(whole, "mine"));
  for (const std::string name : {"General", "END", "Recorded", "None", ""}) {
    EXPECT_FALSE(LoadProtocol(whole, name)) << name;
    EXPECT_EQ(WithoutSection(whole, name).Refused, ProtocolRefusal::NoSection) << name;
  }
  for (const std::string row :
       {"# made|made", "GPROTO= 0|GPROTO= 4", "GPROTO= 0|GPROTO=-1",
        "SENDPLS=|SENDPULS=", "BITG=|BIT_G=", "BIT1= 1000\r\n|",
        "GREPEAT= 72|GREPEAT= ", "GREPEAT= 72|GREPEAT= 72 slots", "GREPEAT= 72|GREPEAT= 40000"}) {
    const std::string text = Replaced(whole, Parts(row)[0], Parts(row)[1]);
    EXPECT_FALSE(LoadProtocol(text, "Mine")) << row;
    EXPECT_EQ(EditedSection(text, Draft("Mine")).Refused, ProtocolRefusal::NoSection) << row;
    EXPECT_TRUE(LoadProtocol(text, "Next")) << row;
  }
}

TEST(ProtocolEdit, RemovesOnlyWholeLinesOfTheSectionThatIsRead) {
  using Refusal = ProtocolRefusal;
  const std::string mine = Protocol("Mine", {"G1010,POWER"});
  const auto joined = [&](std::string_view lineEnd) {
    std::string lines = mine;
    while (lines.find("\r\n") < lines.size()) lines = Replaced(lines, "\r\n", std::string(lineEnd));
    return lines;
  };
  const std::string oneLine = Replaced(joined(" "), "72  G", "72\r\nG") + "\r\n";
  const auto refuses = [](const std::string& text, Refusal add, Refusal edit, Refusal remove) {
    EXPECT_EQ(NewSection(text, Draft()).Refused, add) << text;
    EXPECT_EQ(EditedSection(text, Draft("Mine")).Refused, edit) << text;
    EXPECT_EQ(WithoutSection(text, "Mine").Refused, remove) << text;
  };
  const Refusal none = Refusal::None;
  refuses(Config(mine), none, none, none);
  refuses(Config(joined("\n")), Refusal::LineEnds, Refusal::LineEnds, none);
  refuses(Config(joined("\r")), Refusal::LineEnds, Refusal::LineEnds, Refusal::HeaderLine);
  refuses(Config(oneLine), none, Refusal::HeaderLine, none);
  refuses(Replaced(Config(mine), "[Mine]", "[Mine] see [old]"), none, Refusal::NoSection,
          Refusal::HeaderLine);
  refuses(Replaced(Config(mine), "[Template]", "see [Template]"), Refusal::HeaderLine, none, none);
  EXPECT_EQ(WithoutSection(Replaced(Config(mine), "[Mine]", "[\r\n[Mine]"), "\r\n[Mine").Refused,
            Refusal::HeaderLine);
  refuses(mine + Config(mine), none, Refusal::SectionBeforeGeneral, Refusal::SectionBeforeGeneral);
  refuses(Config(mine + Protocol("MINE", {"G1,A"})), none, none, Refusal::DuplicateSection);
  refuses(Replaced(Config(mine), "[Template]", "Template]"), Refusal::NoTemplate, Refusal::HeaderMissing,
          Refusal::HeaderMissing);
  const std::string amongKeys = Replaced(Config(mine), "BIT1=", "G1100,UP\r\nBIT1=");
  refuses(amongKeys, none, Refusal::CommandAmongKeys, none);
  EXPECT_EQ(EditedSection(amongKeys, Draft("Mine")).Refused.Line, 16);
}

}  // namespace
}  // namespace keplo::tests
