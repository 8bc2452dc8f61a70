#include "line/rooms/room_line.h"

#include <gtest/gtest.h>

#include "broker/mosquitto_server.h"
#include "line/rooms/broker_messages.h"
#include "line/rooms/room_press.h"
#include "signal/zone_link.h"
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

class RoomLineTest : public testing::Test {
 protected:
  void Open(const std::string& rooms) {
    RoomMap map;
    ASSERT_EQ(ParseRooms(rooms, map), "");
    line_ = std::make_unique<RoomLine>(
        calls_, map, [&](const std::string&) { return std::make_unique<ToldRooms>(script_); }, receiver_,
        LineOptions{}, [&](const std::string& text) { told_ += text + "\n"; });
    ASSERT_EQ(line_->OpenCom(1), 1);
  }
  void Come(const std::string& topic, const std::string& payload, bool retained = false) {
    script_.Coming.Messages.push_back({topic, payload, retained, calls_.Now()});
  }
  /// The first bytes of the capture that waits; empty if none does.
  std::string Capture() {
    if (line_->DCD() == 1) return {};
    std::string buffer(510, '\0');
    line_->IRMonitor(buffer, 10);
    return buffer.substr(0, buffer.find_last_not_of('\0') + 1);
  }

  const std::int16_t receiver_ = 0;
  tests::SimulatedPort calls_;
  ToldRooms::Script script_;
  std::string told_;
  std::unique_ptr<RoomLine> line_;
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

TEST_F(RoomLineTest, TellsEachPressAtOnceAndFromWhichRoom) {
  Open("ir/+ 3:bath 5:attic");
  Come("ir/bath", "[9000,-4500,560]");
  Come("ir/attic", "[2400,-600,1200]");
  Come("ir/own", "[9000,-4500,560]");
  Come("ir/bath", "[9000,-4500,560]", /*retained=*/true);
  Come("ir/cellar", "[9000,-4500,560]");
  line_->uDelay(200'000);
  EXPECT_EQ(calls_.Now(), tests::SimulatedPort().Now()) << "a press that waits ends the pause";
  const std::string first = Capture();
  EXPECT_EQ(QueryZone(*line_), 3);
  const int bath = line_->Origin()->Place;
  EXPECT_NE(Capture(), first);
  EXPECT_EQ(QueryZone(*line_), 5);
  EXPECT_EQ(PulseTrain(line_->ToldLengths().begin(), line_->ToldLengths().end()),
            (PulseTrain{2400, 600, 1200}));
  EXPECT_NE(line_->Origin()->Place, bath);
  EXPECT_EQ(Capture(), first);
  EXPECT_EQ(QueryZone(*line_), kNoZone) << "a room without a number";
  EXPECT_EQ(Capture(), "");
  EXPECT_NE(told_.find("ir/bath: it is retained"), std::string::npos) << told_;
  Come("ir/bath", "[9000,-4500,560]");
  calls_.SleepUntil(calls_.Now() + RoomLine::kFresh + std::chrono::milliseconds(1));
  EXPECT_EQ(Capture(), "") << "no news any more";
}

TEST_F(RoomLineTest, SendsToTheRoomThatWasChosen) {
  Open("$share/house/ir/+/RESULT send:cmnd/+/IRSend 3:bath 5:attic");
  const std::string slots = "\xF0\xC0";
  line_->IRSend(slots, 500, 0);
  EXPECT_FALSE(line_->Sent());
  EXPECT_NE(told_.find("Which room"), std::string::npos) << told_;
  EXPECT_FALSE(SendZone(*line_, 4));
  EXPECT_TRUE(SendZone(*line_, 5));
  line_->IRSend(slots, 500, 0);
  EXPECT_TRUE(line_->Sent());
  using Published = std::vector<std::pair<std::string, std::string>>;
  EXPECT_EQ(script_.Published, (Published{{"cmnd/attic/IRSend", "38000,2000,2000,1000"}}));
  Come("ir/attic/RESULT", "[2000,-2000,1000]");
  Come("ir/bath/RESULT", "[9000,-4500,560]");
  EXPECT_NE(Capture(), "");
  EXPECT_EQ(QueryZone(*line_), 3);
  EXPECT_EQ(Capture(), "") << "what we sent ourselves";
  Open("ir/a send:ir/b");
  line_->IRSend(slots, 500, 0);
  EXPECT_EQ(script_.Published.back(),
            std::pair(std::string("ir/b"),
                      std::string(R"({"timings":[2000,-2000,1000],"modulation":38000,"repeat_count":0})")));
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
}

}  // namespace
}  // namespace keplo
