#include "line/rooms/room_line.h"

#include <gtest/gtest.h>

#include "broker/identity.h"
#include "broker/mosquitto_server.h"
#include "line/rooms/broker_messages.h"
#include "line/rooms/room_press.h"
#include "line_script.h"
#include "simulated_port.h"

namespace keplo {
namespace {

/// Receivers of rooms that tell what the test has them tell.
struct ToldRooms : RoomMessages {
  struct Script {
    News Coming;
    std::vector<std::pair<std::string, std::string>> Published;
  };

  explicit ToldRooms(Script& script) : Told(script) {}
  int WakeDescriptor() const override { return -1; }
  News Take() override { return std::exchange(Told.Coming, {}); }
  bool IsUp() const override { return true; }
  std::string WhyNot() const override { return {}; }
  bool Publish(const std::string& topic, const std::string& payload) override {
    Told.Published.emplace_back(topic, payload);
    return true;
  }
  bool IsPublic(const std::string& topic) const override { return topic.ends_with("/signal"); }
  bool IsOwn(const std::string& topic) const override { return topic == "ir/own"; }

  Script& Told;
};

TEST(RoomPress, IsReadAsEachReceiverTellsIt) {
  const PulseTrain press = {9000, 4500, 560, 1690, 560};
  const struct {
    std::string Payload;
    PulseTrain Press;
    std::string Fault;
  } rows[] = {
      {R"({"timings":[9000,-4500,560,-1690,560],"modulation":null,"zone":0})", press, ""},
      {R"({"IrReceived":{"Protocol":"UNKNOWN","RawData":[9000,4500,560,1690,560]}})", press, ""},
      {R"({"IrReceived":{"Protocol":"UNKNOWN","RawData":"+9000-4500+560-1690C"}})", press, ""},
      {"[9000, -4500, 560, -1690, 560]", press, ""},
      {"[12:00:01][D][remote.raw:041]: Received Raw: 9000, -4500, 560, -1690, 560", press, ""},
      {R"({"POWER":"ON"})", {}, ""},
      {"online", {}, ""},
      {"null", {}, ""},
      {R"({"timings":[9000,4500]})", {}, "space below 0"},
      {R"({"timings":[]})", {}, "no lengths"},
      {R"({"IrReceived":{"RawData":["x"]}})", {}, "\"x\""},
      {"remote_transmitter.transmit_raw: {code: [1, -1]}", {}, ""},
      {std::string(kLongestRoomMessage + 1, '1'), {}, "65536"},
  };
  for (const auto& row : rows) {
    try {
      const PulseTrain read = PressOfMessage(row.Payload, "topic");
      EXPECT_EQ(row.Fault, "") << row.Payload;
      EXPECT_EQ(read, row.Press) << row.Payload;
    } catch (const Failure& failure) {
      ASSERT_NE(row.Fault, "") << failure.what();
      EXPECT_NE(std::string(failure.what()).find(row.Fault), std::string::npos) << failure.what();
    }
  }
}

/// What a line makes of a script in which a press is a room, a colon and the lengths it tells, with an
/// exclamation mark ahead of what is retained; then what was published, and told.
std::string Heard(const std::string& rooms, const std::string& script) {
  RoomMap map;
  EXPECT_EQ(ParseRooms(rooms, map), "");
  const std::int16_t receiver = 0;
  tests::SimulatedPort calls;
  ToldRooms::Script told;
  std::string words;
  RoomLine line(
      calls, map, [&](const std::string&) { return std::make_unique<ToldRooms>(told); }, receiver,
      LineOptions{}, [&](const std::string& text) { words += text + ";"; });
  EXPECT_EQ(line.OpenCom(1), 1);
  std::string text = tests::Script(calls, line, script, [&](const std::string& press) {
    const bool retained = press[0] == '!';
    const std::size_t colon = press.find(':');
    told.Coming.Messages.push_back({press.substr(retained ? 1 : 0, colon - (retained ? 1 : 0)),
                                    press.substr(colon + 1), retained, calls.Now()});
  });
  for (const auto& [topic, payload] : told.Published) text += topic + " " + payload + ";";
  return text + words;
}

TEST(RoomLine, TellsEachPressAndItsRoomAndSendsToTheOneThatIsChosen) {
  const char* const kBoth = "$share/house/ir/+/RESULT send:cmnd/+/IRSend 3:bath 5:attic";
  const std::string kWhich =
      "Which room to send to is not known. Choose its zone (keplo send --zone N, or VEXIL), and name it in "
      "ports.conf with that number.;";
  struct Row {
    const char *Rooms, *Script;
    std::string Text;
  };
  const Row rows[] = {
      {"ir/+ 3:bath 5:attic",
       "pir/bath:9000,-4500,560 pir/attic:2400,-600,1200 pir/own:9000,-4500,560 p!ir/bath:9000,-4500,560 "
       "pir/cellar:9000,-4500,560 u200000 d m30 z d m30 z d m30 z d q",
       "0 [9000 4500 560] 164 76/30 -14060..0 @0; zone 3 0 [2400 600 1200] 44 11 21 164/30 -4200..0 @0; zone "
       "5 0 [9000 4500 560] 164 76/30 -14060..0 @0; zone 9 1 rest 0 A message on ir/+ refused; the last one: "
       "ir/bath: it is retained, so that nobody knows how old it is.;"},
      {"ir/+ 3:bath", "pir/bath:9000,-4500,560 w2000000 d m30 d",
       "0 [9000 4500 560] 164 76/30 -14060..0 @2000000; 1 "},
      {"ir/+ 3:bath", "pir/bath:9000,-4500,560 w1 pir/bath:900,-500,560 w2000000 d m30 d",
       "0 [900 500 560] 16 9 11 204/30 -1959..1 @2000001; 1 A message on ir/+ refused; the last one: it "
       "could not be taken within two seconds.;"},
      {"ir/+ 3:bath", "d w400000 u300000 d m30 pir/bath:900,-500,560 u300000 d m30 w1000000 q",
       "1 1 [] /0 @700000; 0 [900 500 560] 16 9 11 204/30 698040..700000 @700000; rest 1000 "},
      {"ir/+ 3:bath", "pir/bath:900,-500,560 f d pir/bath:900,-500,560 r30 r30",
       "1 0 [] /0 @10000000; 0 [] /0 @20000000; "},
      {"ir/+ 3:bath", "pir/bath:2500,-500,1300,-500,700,-480,1320,-500,680,-520,720,-500,1280 d m50",
       "0 [2500 500 1300 500 700 480 1320 500 680 520 720 500 1280] 44 11 21 11 11 11 22 11 11 11 11 11 22 "
       "192/50 -11500..0 @0; "},
      {kBoth, "s500 z4 s500 z5 s500 z3 s600 z",
       "not sent zone 0 not sent zone 1 sent zone 1 sent zone 9 cmnd/attic/IRSend "
       "38000,2000,1500,500;cmnd/bath/IRSend 38000,2400,1800,600;" +
           kWhich + kWhich},
      {kBoth, "z5 s500 pir/attic/RESULT:900,-500,560 pir/bath/RESULT:9000,-4500,560 d m30 z d",
       "zone 1 sent 0 [9000 4500 560] 164 76/30 -10060..4000 @4000; zone 3 1 cmnd/attic/IRSend "
       "38000,2000,1500,500;"},
      {kBoth, "z5 s500 w499999 pir/attic/RESULT:900,-500,560 d w1 pir/attic/RESULT:900,-500,560 d m30",
       "zone 1 sent 1 0 [900 500 560] 16 9 11 204/30 502040..504000 @504000; cmnd/attic/IRSend "
       "38000,2000,1500,500;"},
      {"ir/a send:ir/b", "s500 pir/a:900,-500,560 d w500000 pir/a:900,-500,560 d m30 z",
       R"(sent 1 0 [900 500 560] 16 9 11 204/30 502040..504000 @504000; zone 9 ir/b {"timings":[2000,-1500,500],"modulation":38000,"repeat_count":0};)"},
      {"ir/a", "s500 s500 pir/a:900,-500,560,-30000,600,-400,600,-40000,600 d m600 z pir/a:900,-500 d",
       "not sent not sent 0 [900 500 560 30000 600 400 600 40000 600] 16 9 11 545 11 7 11 727 11 3452/600 "
       "-74160..0 @0; zone 9 0 mqtt:ir/a has no sender. Add send:TOPIC to its line in ports.conf.;"},
      {"ir/+ 3:bath", "pir/bath:900,-500,560 pir/bath:900,-500,x pir/attic:900,-500,560 s500 d m30 d m30 d",
       "not sent 0 [900 500 560] 16 9 11 204/30 -1960..0 @0; 0 [900 500 560] 16 9 11 204/30 -1960..0 @0; 1 "
       "mqtt:ir/+ has no sender. Add send:TOPIC to its line in ports.conf.;"},
  };
  for (const Row& row : rows) EXPECT_EQ(Heard(row.Rooms, row.Script), row.Text) << row.Script;
}

TEST(BrokerMessages, ComeFromTheBrokerThatTheSettingsName) {
  const broker::TestFolder folder;
  const broker::MosquittoServer first(folder), second(folder);
  const auto name = [&](const broker::MosquittoServer& server) {
    folder.Write("broker.json", R"({"host":"127.0.0.1","port":)" + std::to_string(server.Port()) + "}");
  };
  name(first);
  const auto messages = BrokerMessagesOf(folder.Path())("ir/+");
  ASSERT_TRUE(tests::Until([&] {
    messages->Take();
    return messages->IsUp();
  }));
  name(second);
  broker::Observer receiver(second.Port());
  EXPECT_TRUE(tests::Until([&] {
    receiver.Publish("ir/bath", "[9000,-4500,560]");
    return !messages->Take().Messages.empty();
  }));
  int tries = 0;
  EXPECT_TRUE(tests::Until([&] { return ++tries, messages->Publish("ir/out", "[1]"); }));
  EXPECT_LT(tries, 4) << "it waits for the broker's answer";
  EXPECT_TRUE(receiver.Sees("ir/out", 1));
  const std::string top = "keplo/" + broker::IdentityOf(folder.Path()), own = top + "/signal";
  EXPECT_TRUE(receiver.All(top + "/status").empty()) << "only a host tells that it runs";
  for (const auto& [topic, isPublic] :
       {std::pair(own, true), {"keplo/b/signal", true}, {"keplo/b/event", false}}) {
    EXPECT_EQ(messages->IsPublic(topic), isPublic);
    EXPECT_EQ(messages->IsOwn(topic), topic == own);
  }
}

}  // namespace
}  // namespace keplo
