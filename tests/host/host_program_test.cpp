#include <sys/stat.h>

#include <iterator>
#include <nlohmann/json.hpp>

#include "host/running_host.h"
#include "host_program/process_group.h"

namespace keplo::tests {

namespace {

class HostProgramTest : public ::testing::Test {
 protected:
  void ExpectInLog(const std::vector<std::string>& texts) {
    for (const std::string& text : texts) ExpectPart(host_.Log(), text);
  }

  ApplicationPath app_;
  RunningHost host_{app_};
};

TEST_F(HostProgramTest, ReportsPressesToATerminalAndTheJournal) {
  app_.AddPowerEvent("[]");
  struct stat output {};
  ASSERT_EQ(stat(app_.Write("app/output.txt", "").c_str(), &output), 0);
  host_.Set("JOURNAL_STREAM", std::to_string(output.st_dev) + ":" + std::to_string(output.st_ino));
  host_.Start({"--once", "--replay", kPower, kMute});
  EXPECT_EQ(host_.Wait(), 1);
  const auto lines = host_.Output();
  ASSERT_EQ(lines.size(), 2U);
  ExpectPart(lines[0], "  event 17  Lamp on  NEC&TV_POWER  zone 5");
  EXPECT_EQ(lines[1], "<6>2 presses heard, 1 event raised, 1 press without an event");
  ExpectInLog(
      {"keplo-host: ", "sony_tv_mute.mode2 press 1: heard, but no event: no activated event is bound"});
}

TEST_F(HostProgramTest, ReloadsOnHangupAndEndsOnAStopSignal) {
  host_.Start({});
  ASSERT_NE(host_.Port(), 0);
  app_.Write("app/host.json", "damaged");
  host_.Signal(SIGHUP);
  EXPECT_NE(host_.WaitForLog("host.json is not whole JSON"), "");
  app_.Write("app/host.json", R"({"version": 1, "events": {}})");
  host_.Signal(SIGHUP);
  EXPECT_NE(host_.WaitForLog("was read again"), "");
  host_.Signal(SIGTERM);
  EXPECT_EQ(host_.Wait(), 0);
}

TEST_F(HostProgramTest, RunsTheProgramsOfAnEvent) {
  const std::string script = app_.Write("tell.sh",
                                        "printf '%s|%s|%s|%s|%s' \"$1\" \"$KEPLO_EVENT_ID\" "
                                        "\"$KEPLO_EVENT_NAME\" \"$KEPLO_COMMAND\" \"$KEPLO_ZONE\"\n");
  app_.AddPowerEvent(R"([{"kind": "dance"}, {"kind": "run", "program": "/missing/program"}, {"kind": "run"},
      {"kind": "run", "program": "/bin/sh", "arguments": [")" +
                     script + R"(", "$(reboot); *"]},
      {"kind": "shell", "command": "echo said | tr a-z A-Z; printf %5000d 7; echo; seq 2000; exit 3"}])");
  host_.Start({"--once", "--replay", kPower});
  EXPECT_EQ(host_.Wait(), 0);
  ExpectInLog({"no kind of action dance", "/missing/program cannot be started", "is not complete",
               "Event 17: $(reboot); *|17|Lamp on|NEC&TV_POWER|5\n", "Event 17: SAID\n",
               "904 bytes more in this line\n", "Event 17: 998\n", "/bin/sh writes more than the 1000 lines",
               "5009 bytes that /bin/sh wrote were not logged", "/bin/sh ended with status 3"});
  EXPECT_EQ(host_.Log().find("Event 17: 999\n"), std::string::npos);
}

TEST_F(HostProgramTest, ReportsOnePressAndRunsItsDueActions) {
  app_.AddPowerEvent(R"([{"kind": "shell", "command": "echo pressed", "on": "press"},
      {"kind": "shell", "command": "echo held", "on": "hold", "after_ms": 400},
      {"kind": "shell", "command": "echo let go", "on": "release"}])");
  std::ifstream sample(kPower);
  std::string held((std::istreambuf_iterator<char>(sample)), {});
  for (int ditto = 0; ditto < 20; ++ditto) held += "pulse 9100\nspace 2200\npulse 650\nspace 96000\n";
  host_.Start({"--once", "--real-time", "--presses", "--json", "--replay", app_.Write("held.mode2", held)});
  EXPECT_EQ(host_.Wait(), 0) << host_.Log();
  std::string reported;
  for (const std::string& line : host_.Output()) {
    auto event = nlohmann::ordered_json::parse(line);
    reported += event.value("press", std::string("event")) + ' ';
    if (event.contains("press")) continue;
    EXPECT_FALSE(event["time"].get<std::string>().empty());
    event.erase("time");
    EXPECT_EQ(event.dump(), R"({"event_id":"17","event_name":"Lamp on","command":"NEC&TV_POWER","zone":5})");
  }
  EXPECT_EQ(reported.find("press event hold event "), 0U) << reported;
  EXPECT_EQ(reported.find("release "), reported.size() - 8) << reported;
  for (const std::string text : {"pressed", "held", "let go"}) {
    const std::string line = "Event 17: " + text + "\n";
    const std::size_t first = host_.Log().find(line);
    EXPECT_NE(first, std::string::npos) << text;
    EXPECT_EQ(host_.Log().find(line, first + 1), std::string::npos) << text << " came twice";
  }
}

TEST_F(HostProgramTest, EndsProgramsWithTheirChildrenAndReadsTheirOutput) {
  const std::string fifo = (app_.Path() / "fifo").string();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  app_.AddPowerEvent(R"([{"kind": "shell", "command": "trap '' TERM; echo deaf; printf last; sleep 1000"},
                         {"kind": "shell", "command": "sleep 1000 & echo left $$"},
                         {"kind": "shell", "command": "setsid -f cat )" +
                     fifo + R"(; exit 3"}])");
  host_.Start({"--replay", kPower});
  EXPECT_NE(host_.WaitForLog("deaf"), "");
  const std::string group = host_.WaitForLog("left ");
  ASSERT_NE(group, "");
  EXPECT_TRUE(host::IsAlive(std::stoi(group)));
  EXPECT_NE(host_.WaitForLog("ended with status 3"), "");
  std::ofstream(fifo) << "late\n";
  EXPECT_NE(host_.WaitForLog("Event 17: late"), "");
  host_.Signal(SIGTERM);
  host_.Signal(SIGTERM);
  EXPECT_EQ(host_.Wait(), 0);
  EXPECT_FALSE(host::IsAlive(std::stoi(group)));
  ExpectInLog({"/bin/sh does not end; it is killed.", "Event 17: last\n"});
}

TEST_F(HostProgramTest, RepairsABrokenRegistration) {
  const std::string classFile = "home/.local/share/velmora/classes/InputKeplo.Keplo.json";
  const auto statusOf = [&](const std::vector<std::string>& options) {
    RunningHost host(app_);
    host.Start(options);
    return host.Wait();
  };
  std::filesystem::create_directories(app_.Home() / ".local/share/velmora/classes");
  app_.Write(classFile, R"({"component": "/gone.so"})");
  EXPECT_EQ(statusOf({"--register"}), 0);
  EXPECT_EQ(nlohmann::json::parse(app_.Read(classFile))["component"], KEPLO_COMPONENT);
  app_.Write(classFile, "{\"class\": \"Inp");
  EXPECT_EQ(statusOf({"--unregister", "--component", "/gone.so"}), 0);
  EXPECT_EQ(app_.Read(classFile), "");
  std::filesystem::remove(app_.Home() / ".local/share/velmora/classes");
  app_.Write("home/.local/share/velmora/classes", "no folder");
  EXPECT_EQ(statusOf({"--register"}), 3);
}

TEST_F(HostProgramTest, RefusesWhatItCannotRunWith) {
  const std::string fifo = (app_.Path() / "fifo").string();
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  const std::string nested = std::string(100000, '[') + std::string(100000, ']');
  const std::string deep = app_.Write("deep.json", R"({"version": 1, "events": {"1": )" + nested + "}}");
  const std::string large = app_.Write("large.json", std::string(2000000, ' '));
  const std::string newer = app_.Write("newer.json", R"({"version": 2, "events": {}})");
  const std::vector<std::vector<std::string>> cases = {
      {"fifo cannot be read: it is no regular file", "--host-file", fifo},
      {"deep.json is nested deeper than 64 levels", "--host-file", deep},
      {"large.json cannot be read: it is larger than", "--host-file", large},
      {"newer.json was not written by this", "--host-file", newer},
      {"/missing.mode2", "--replay", "/missing.mode2"},
      {"it is no IP address", "--http-address", "localhost"}};
  for (const auto& wrong : cases) {
    RunningHost host(app_);
    host.Start({wrong[1], wrong[2]});
    EXPECT_EQ(host.Wait(), 2) << wrong[0];
    ExpectPart(host.Log(), wrong[0]);
  }
  app_.Write("app/inputKeplo.mdb", "this is no database, and it is long enough to be looked at");
  host_.Start({});
  EXPECT_EQ(host_.Wait(), 2);
  ExpectInLog({"The event map cannot be loaded: "});
}

}  // namespace

}  // namespace keplo::tests
