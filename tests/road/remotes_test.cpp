#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "program.h"

namespace keplo::tests {
namespace {

using nlohmann::json;

const std::string kRemote =
    "Filetype: IR signals file\nVersion: 1\n#\nname: Power\ntype: parsed\nprotocol: NEC\naddress: 07 00 00 "
    "00\n"
    "command: 01 00 00 00\n#\nname: 1\ntype: parsed\nprotocol: NEC\naddress: 07 00 00 00\n"
    "command: 02 00 00 00\n#\nname: Red\ntype: parsed\nprotocol: NoSuch\naddress: 07 00 00 00\n"
    "command: 03 00 00 00\n";

TEST(Remotes, AreImportedUsedExportedAndTurnedIntoOtherFormats) {
  const Install install;
  const std::string before = install.Config();
  const std::string file = Quoted(install.Write("Den.ir", kRemote));
  const std::string power = "G11100000000111111000000001111111", one = "G11100000000111110100000010111111";
  ExpectTold(install, {{"import --dry-run" + file,
                        1,
                        {"Den&Power\t" + power, "2 commands would be imported into Den, 1 skipped"}}});
  EXPECT_EQ(install.Config(), before);
  ExpectTold(install,
             {{"import --keys power,red" + file, 1, {"1 command imported into Den", "NoSuch"}},
              {"import --keys x" + file, 1, {"no key has a name of --keys x"}},
              {"import --section den --keys '1,po*'" + file,
               0,
               {"Den&KEY_1\t" + one + "\trenamed from \"1\"", "known: the code is that of Den&Power"}},
              {"import --section Template" + file, 1, {"This protocol is read-only."}},
              {"commands Den", 0, {"Den\tPower\t" + power + "\nDen\tKEY_1\t" + one + "\n"}},
              {"send Den KEY_1 --out -", 0, {"pulse 8992\nspace 4496\n"}},
              {"export --format flipper --section Den --command power",
               0,
               {"name: Power\ntype: parsed\nprotocol: NEC\naddress: 07 00 00 00\n"}},
              {"export --format flipper --command nothing", 1, {"there is no such command"}},
              {"export --format nothing", 2, {"--format"}},
              {"forget 'Den&KEY_1'", 0, {"Den&KEY_1"}},
              {"import /dev/null", 2, {"/dev/null"}},
              {"protocols Den", 0, {"carrier\t38000"}}});
  const std::string lirc =
      RunKeplo("convert" + file + " --to lirc --out" + Quoted(install.File("den.conf"))).Err;
  ExpectPart(lirc, "NoSuch");
  std::istringstream rows(install.Run("import --dry-run --json" + Quoted(install.File("den.conf"))).Out);
  std::string row;
  ASSERT_TRUE(std::getline(rows, row));
  const json key = json::parse(row);
  EXPECT_EQ(key.at("key").get<std::string>() + key.at("kind").get<std::string>() +
                key.at("section").get<std::string>() + key.at("name").get<std::string>(),
            "PowercodeDenPower")
      << row;
  EXPECT_EQ("G" + key.at("code").get<std::string>(), power);
  const std::string full = install.FillConfig(100);
  ExpectTold(install, {{"import" + file, 3, {"Nothing was imported: it needs"}},
                       {"import --dry-run" + file, 1, {"free"}}});
  EXPECT_EQ(install.Config(), full);
}

}  // namespace
}  // namespace keplo::tests
