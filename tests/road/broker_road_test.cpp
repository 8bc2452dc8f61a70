#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "broker/mosquitto_server.h"
#include "program.h"

namespace keplo::tests {
namespace {

/// The messages published to a topic, without the time.
std::string Told(const broker::Observer& observer, const std::string& topic) {
  std::string reported;
  for (const auto& seen : observer.All(topic)) {
    auto json = nlohmann::ordered_json::parse(seen.Payload, nullptr, false);
    if (json.is_object()) json.erase("time");
    reported += json.is_discarded() ? seen.Payload + "\n" : json.dump() + "\n";
  }
  return reported;
}

TEST(BrokerRoad, PublishesWhatAMonitorHears) {
  const Install install;
  const broker::TestFolder folder;
  const broker::MosquittoServer server(folder);
  const broker::Observer observer(server.Port());
  const auto press = Quoted(std::filesystem::path(KEPLO_SOURCE_DIR) / "samples" / "sony_tv_1.mode2");
  install.Write("broker.id", "0badcafe\n");
  ExpectTold(install,
             {{"events add 'SONY&TV_1' --name One --zone 0", 0, {}},
              {"events add 'SONY&TV_1' --name Off --disabled", 0, {}},
              {"broker set --host 127.0.0.1 --signals yes --port " + std::to_string(server.Port()), 0, {}},
              {"broker check", 0, {"connection: yes"}},
              {"monitor --broker --once --replay" + press, 0, {"1 event raised"}}});
  const std::string top = "keplo/0badcafe/", device = "homeassistant/device/keplo-0badcafe/config";
  ASSERT_TRUE(observer.Sees(top + "status", 2));
  EXPECT_EQ(Told(observer, top + "status"), "online\noffline\n");
  const std::string rest = R"(,"name":"One","command":"SONY&TV_1","zone":0,"count":1})";
  EXPECT_EQ(Told(observer, top + "event/1"),
            R"({"event_type":"press")" + rest + "\n" + R"({"event_type":"release")" + rest + "\n");
  ExpectPart(
      Told(observer, top + "signal"),
      R"(],"modulation":null,"protocol":"SONY","code":"000000010000","command":"SONY&TV_1","zone":0})");
  ExpectTold(install, {{"broker forget", 0, {"taken out of Home Assistant. A host that runs"}},
                       {"broker forget --discovery-prefix ha", 0, {"taken out of Home Assistant.\n"}}});
  ASSERT_TRUE(observer.Sees(device, 2));
  ExpectPart(Told(observer, device), R"("components":{"event_1":{"platform":"event")");
  EXPECT_EQ(observer.All(device).back().Payload, "");
}

}  // namespace
}  // namespace keplo::tests
