#include "broker/broker_settings.h"
#include "broker/change_settings.h"
#include "broker/identity.h"
#include "broker/key_stages.h"
#include "failure.h"
#include "mosquitto_server.h"

namespace keplo::broker {
namespace {

TEST(BrokerKeyStages, AreOnePressAndOneReleaseForEachRoom) {
  std::string reported;
  KeyStages stages([&](const KeyEvent& event) {
    reported += KeyMessage(event).substr(15, 4) + event.EventID + std::to_string(event.Zone) +
                std::to_string(event.Count) + " ";
  });
  const auto raise = [&](const char* eventID, int zone = 0) {
    stages.Raised({{}, eventID, "", "", zone, "", 1});
  };
  raise("alone");
  stages.Pressed(1, 7);
  raise("a");
  raise("b", 5);
  stages.Pressed(2, 0);
  raise("a");
  stages.Held(1, 2);
  raise("a");
  stages.Held(2, 2);  // in the pause after an event, so that no event is raised
  stages.Released(1, 2);
  stages.Released(2, 2);
  EXPECT_EQ(reported, "presalone01 presa71 presb51 presa01 holda72 holdb52 holda02 relea72 releb52 relea02 ");
}

TEST(BrokerIdentity, IsCreatedOnceAndSafeInTopics) {
  const TestFolder folder;
  const std::string identity = IdentityOf(folder.Path());
  EXPECT_EQ(identity.size(), 8U);
  EXPECT_EQ(IdentityOf(folder.Path()), identity);
  folder.Write("broker.id", "damaged");
  EXPECT_THROW(IdentityOf(folder.Path()), Failure)
      << "another one would leave Home Assistant's history behind";
  EXPECT_EQ(SafeForTopic("Az9-"), "Az9-");
  EXPECT_EQ(SafeForTopic("a/+#_\xc3"), "a_2f_2b_23_5f_c3");
  EXPECT_NE(SafeForTopic(""), SafeForTopic("_"));
}

}  // namespace
}  // namespace keplo::broker
