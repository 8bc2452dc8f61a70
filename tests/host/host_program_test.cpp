#include <sys/stat.h>

#include <nlohmann/json.hpp>

#include "host/running_host.h"

namespace keplo::tests {

namespace {

class HostProgramTest : public ::testing::Test {
 protected:
  /// A pipe to which nobody writes.
  std::string Fifo() const {
    std::string path = (app_.Path() / "fifo").string();
    EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
    return path;
  }

  ApplicationPath app_;
  RunningHost host_{app_};
};

TEST_F(HostProgramTest, RaisesTheEventsOfRecordingsAndEnds) {
  app_.AddEvents({kPowerEvent, kMuteEvent});
  host_.Start({"--json", "--once", "--replay", ApplicationPath::Sample("sony_tv_mute"),
               ApplicationPath::Sample("nec_tv_power")});
  EXPECT_EQ(host_.Wait(), 0) << host_.Log();
  const auto lines = host_.Output();
  ASSERT_EQ(lines.size(), 2U);
  auto event = nlohmann::ordered_json::parse(lines[0]);
  EXPECT_FALSE(event["time"].get<std::string>().empty());
  event.erase("time");
  EXPECT_EQ(event.dump(), R"({"event_id":"18","event_name":"Quiet","command":"SONY&TV_MUTE","zone":3})");
  EXPECT_EQ(nlohmann::json::parse(lines[1])["event_id"], "17");
}

TEST_F(HostProgramTest, TellsWhichPressRaisedNothing) {
  app_.AddEvents({kPowerEvent});
  host_.Start({"--once", "--replay", ApplicationPath::Sample("nec_tv_power"),
               ApplicationPath::Sample("rc5_tv_mute")});
  EXPECT_EQ(host_.Wait(), 1);
  const auto lines = host_.Output();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NE(lines[0].find("  event 17  Lamp on  NEC&TV_POWER  zone 0"), std::string::npos);
  EXPECT_EQ(lines[1], "2 presses heard, 1 events raised, 1 presses without an event");
  EXPECT_NE(
      host_.Log().find("rc5_tv_mute.mode2 press 1: heard, but no event: no activated event is bound to"),
      std::string::npos);
}

TEST_F(HostProgramTest, EndsCleanlyOnASignal) {
  host_.Start({});
  ASSERT_NE(host_.Port(), 0);
  host_.Terminate();
  EXPECT_EQ(host_.Wait(), 0);
}

TEST_F(HostProgramTest, TellsLevelsOnTheStreamThatIsTheJournal) {
  struct stat output {};
  ASSERT_EQ(stat(app_.Write("app/output.txt", "").c_str(), &output), 0);
  host_.Set("JOURNAL_STREAM", std::to_string(output.st_dev) + ":" + std::to_string(output.st_ino));
  host_.Start({"--once", "--replay", ApplicationPath::Sample("nec_tv_power")});
  EXPECT_EQ(host_.Wait(), 1);
  EXPECT_EQ(host_.Output().back().substr(0, 11), "<6>1 presse");
  EXPECT_EQ(host_.Log().substr(0, 12), "keplo-host: ");
}

TEST_F(HostProgramTest, RunsTheProgramsOfAnEvent) {
  app_.AddEvents({kPowerEvent});
  const std::string told = (app_.Path() / "told.txt").string();
  const std::string script =
      app_.Write("tell.sh",
                 "printf '%s|%s|%s|%s|%s' \"$1\" \"$KEPLO_EVENT_ID\" "
                 "\"$KEPLO_EVENT_NAME\" \"$KEPLO_COMMAND\" \"$KEPLO_ZONE\" > \"$TOLD\"\n");
  host_.Set("TOLD", told);
  app_.Write(
      "book.json",
      nlohmann::json{
          {"version", 1},
          {"events",
           {{"17",
             {{"actions",
               {{{"kind", "dance"}},
                {{"kind", "run"}, {"program", "/missing/program"}},
                {{"kind", "run"}},
                {{"kind", "run"}, {"program", "/bin/sh"}, {"arguments", {script, "$(reboot); *"}}},
                {{"kind", "shell"}, {"command", "echo said | tr a-z A-Z; printf %5000d 7; exit 3"}}}}}}}}}
          .dump());
  host_.Start({"--once", "--host-file", (app_.Path().parent_path() / "book.json").string(), "--replay",
               ApplicationPath::Sample("nec_tv_power")});
  EXPECT_EQ(host_.Wait(), 0);
  EXPECT_EQ(app_.Read("app/told.txt"), "$(reboot); *|17|Lamp on|NEC&TV_POWER|0");
  const std::string log = host_.Log();
  for (const char* line : {"no kind of action dance", "/missing/program cannot be started", "is not complete",
                           "Event 17: SAID", " 7\n", "/bin/sh ended with status 3"}) {
    EXPECT_NE(log.find(line), std::string::npos) << line << " in\n" << log;
  }
}

TEST_F(HostProgramTest, EndsProgramsThatDoNotEnd) {
  app_.AddEvents({kPowerEvent});
  app_.Write("app/host.json",
             R"({"version": 1, "events": {"17": {"actions": [{"kind": "run", "program": "/bin/sh",
                "arguments": ["-c", "trap '' TERM; echo deaf; read never < \"$0\"", ")" +
                 Fifo() + R"("]}]}}})");
  host_.Start({"--once", "--replay", ApplicationPath::Sample("nec_tv_power")});
  host_.WaitForLog("deaf");
  host_.Terminate();
  EXPECT_EQ(host_.Wait(), 0);
  EXPECT_NE(host_.Log().find("/bin/sh does not end; it is killed."), std::string::npos) << host_.Log();
}

TEST_F(HostProgramTest, MendsARegistrationThatLeadsNowhere) {
  const std::string classFile = "home/.local/share/velmora/classes/InputKeplo.Keplo.json";
  const auto statusOf = [&](const std::vector<std::string>& options) {
    RunningHost host(app_);
    host.Start(options);
    return host.Wait();
  };
  std::filesystem::create_directories(app_.Home() / ".local/share/velmora/classes");
  for (const char* damaged : {"{\"class\": \"Inp", R"({"component": "/gone.so"})"}) {
    app_.Write(classFile, damaged);
    EXPECT_EQ(statusOf({"--register"}), 0);
    EXPECT_EQ(nlohmann::json::parse(app_.Read(classFile))["component"], KEPLO_COMPONENT);
    app_.Write(classFile, damaged);
    EXPECT_EQ(statusOf({"--unregister", "--component", "/gone.so"}), 0);
    EXPECT_FALSE(std::filesystem::exists(app_.Home() / ".local/share/velmora/classes/InputKeplo.Keplo.json"));
  }
}

TEST_F(HostProgramTest, RefusesWhatItCannotRunWith) {
  struct Case {
    std::vector<std::string> Options;
    std::string Told;
  };
  const std::string damaged = app_.Write("damaged.json", R"({"version": 1, "eve)");
  const std::string newer = app_.Write("newer.json", R"({"version": 2, "events": {}})");
  for (const Case& wrong : std::vector<Case>{{{"--host-file", damaged}, "damaged.json is not whole JSON"},
                                             {{"--host-file", newer}, "newer.json was not written by this"},
                                             {{"--component", "/missing.so"}, "/missing.so cannot be loaded"},
                                             {{"--replay", "/missing.mode2"}, "/missing.mode2"},
                                             {{"--http-address", "localhost"}, "no IP address"}}) {
    RunningHost host(app_);
    host.Start(wrong.Options);
    EXPECT_EQ(host.Wait(), 2);
    EXPECT_NE(host.Log().find(wrong.Told), std::string::npos) << host.Log();
  }
  app_.Write("app/inputKeplo.mdb", "this is no database, and it is long enough to be looked at");
  host_.Start({});
  EXPECT_EQ(host_.Wait(), 2);
  EXPECT_NE(host_.Log().find("The event map cannot be loaded: "), std::string::npos) << host_.Log();
}

}  // namespace

}  // namespace keplo::tests
