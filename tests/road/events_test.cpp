#include <gtest/gtest.h>
#include <sqlite3.h>

#include "program.h"

namespace keplo::tests {
namespace {

TEST(Events, AreBoundToTheNamesOfAPressAndStayUnchanged) {
  const Install install;
  std::string config = install.Config();
  config.insert(config.find("TV_POWER"), " ");
  config.insert(config.find("TV_MUTE"), "\xC2\x9B");
  install.Write("keplo.cfg", config.insert(config.find("[SONY]"), "[nec]\r\n"));
  ExpectTold(install, {{"events add 'nec&TV_POWER'", 0, {}}});
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(install.File("inputKeplo.mdb").c_str(), &other), SQLITE_OK);
  sqlite3_exec(other, "update colclsKeploEvents set EventName = 'a' || char(9)", nullptr, nullptr, nullptr);
  sqlite3_close(other);
  ExpectTold(install, {{"events disable 1", 0, {}},
                       {"events list --json", 0, {"a\\t", "\"NEC&TV_POWER\",\"enabled\":false"}},
                       {"commands NEC --json", 0, {"\\u009bTV_MUTE"}}});
}

TEST(Events, ThatARenameMissesAreListed) {
  const Install install;
  install.Run("events add --each");
  ExpectTold(install, {{"events add 'NEC&TV_MUTE' --id again", 0, {}}});
  sqlite3* other = nullptr;
  ASSERT_EQ(sqlite3_open(install.File("inputKeplo.mdb").c_str(), &other), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(other, "begin immediate", nullptr, nullptr, nullptr), SQLITE_OK);
  ExpectTold(install, {{"commands rename 'NEC&TV_MUTE' SILENCE",
                        3,
                        {", again still the old one, NEC&TV_MUTE", "modify ID --command 'NEC&SILENCE'"}},
                       {"commands NEC", 0, {"SILENCE"}}});
  ASSERT_EQ(sqlite3_exec(other, "commit; begin exclusive", nullptr, nullptr, nullptr), SQLITE_OK);
  ExpectTold(install, {{"commands rename 'NEC&SILENCE' QUIET", 2, {"event map cannot be loaded"}},
                       {"commands NEC", 0, {"SILENCE"}}});
  sqlite3_close(other);
}

TEST(Events, GetUniqueNumbersWhenManyAreAddedAtOnce) {
  const Install install;
  // Who waits too long for the others tries again.
  RunShell("for i in $(seq 12); do (for try in $(seq 99); do '" KEPLO_PROGRAM "' events add 'NEC&TV_POWER'" +
           install.Option() + " && break; done) & done; wait");
  EXPECT_EQ(Lines(install.Run("events list").Out).size(), 12U);
}

TEST(Events, NameTheProgramsThatReloadAChange) {
  const Install install;
  ASSERT_EQ(install.Run("events add 'NEC&TV_POWER'").Err, "") << "nobody runs";
  const auto sample = std::filesystem::path(KEPLO_SOURCE_DIR) / "samples" / "sony_tv_1.mode2";
  const std::string keplo = "'" KEPLO_PROGRAM "' ", option = install.Option();
  const auto ran =
      RunShell(keplo + "monitor" + option + " --replay" + Quoted(sample) +
               " >/dev/null & m=$!; for i in $(seq 600); do " + keplo + "events disable 1" + option +
               " 2>&1 | grep \"process $m, .* takes the change in\" && break; sleep 0.1; done; kill $m");
  EXPECT_EQ(ran.Out.find("keplo: keplo, process "), 0U) << ran.Out << ran.Err;
}

}  // namespace
}  // namespace keplo::tests
