#include "broker/broker_settings.h"
#include "broker/change_settings.h"
#include "broker/identity.h"
#include "broker/key_stages.h"
#include "failure.h"
#include "mosquitto_server.h"

namespace keplo::broker {
namespace {

TEST(BrokerKeyStages, AreOnePressAndOneReleaseForEachRoom) {
  std::string told;
  KeyStages stages([&](const KeyEvent& event) {
    told += KeyMessage(event).substr(15, 4) + event.EventID + std::to_string(event.Zone) +
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
  EXPECT_EQ(told, "presalone01 presa71 presb51 presa01 holda72 holdb52 holda02 relea72 releb52 relea02 ");
}

TEST(BrokerSettingsFile, TellsTheLineOfWhatIsWrong) {
  const struct {
    const char* Text;
    const char* Said;
  } files[] = {
      {"{\n\"host\": \"h\",\n\"prot\": 1}", "line 3: \"prot\" is no setting"},
      {"{\n\"host\": \"port\", \"port\":\n0}", "line 2: \"port\" takes a number from 1"},
      {"{\"host\": \"h\",\n\n\"prefix\": \"a/#\"}", "line 3: \"prefix\""},
      {"{\"host\": \"h\", \"discovery_prefix\": \"+\"}", "line 1: \"discovery_prefix\""},
      {"{\n\"port\": 1\n}", "no \"host\""},
      {"{\"host\": \"[::1]\"}", "without brackets"},
      {"{\"host\": \"h\", \"key\": \"k\"}", "come together"},
      {"{\n\n\"host\": oops}", "line 3: the file is not whole JSON"},
      {"[]", "line 1: the file is JSON, but no object;"},
  };
  for (const auto& file : files) {
    try {
      ParseBrokerSettings(file.Text, "broker.json");
      ADD_FAILURE() << file.Text;
    } catch (const Failure& failure) {
      EXPECT_NE(std::string(failure.what()).find(file.Said), std::string::npos) << failure.what();
    }
  }
  const BrokerSettings tls =
      ParseBrokerSettings(R"({"host":"h","tls":true,"ca":"ca.pem"})", "/home/broker.json");
  EXPECT_EQ(tls.Port, 8883);
  EXPECT_EQ(tls.Ca, "/home/ca.pem");
}

TEST(BrokerSettingsFile, IsNotChangedByHalfOfWhatIsNeeded) {
  const TestFolder folder;
  const auto refusal = [&](const TypedSettings& typed) {
    try {
      ChangeBrokerSettings(folder.Path(), typed);
    } catch (const Failure& failure) {
      return std::string(failure.what());
    }
    return std::string();
  };
  const struct {
    std::string Before;
    TypedSettings Typed;
    const char* Said;
  } changes[] = {
      {R"({"host":"h"})", {{"ca", "F"}, {"port", "3"}}, "broker set --ca 'F' --port '3' --tls yes"},
      {R"({"host":"h","tls":true,"ca":"F"})", {{"tls", "no"}}, "broker set --tls 'no' --ca ''"},
      {R"({"host":"h"})", {{"tls", "no"}, {"ca", "F"}}, "broker set --tls 'no' --ca ''"},
      {R"({"host":"h"})", {{"password_file", "p"}}, "--user NAME"},
      {R"({"host":"h"})", {{"user", "\xff"}}, "takes a name"},
      {R"({"host":"h"})", {{"prefix", std::string(2000, 'a')}}, "1024 at most"},
      {"{\"host\":\"h\",\n\"prot\":1}", {{"port", "3"}}, "line 2: \"prot\""},
  };
  for (const auto& change : changes) {
    folder.Write("broker.json", change.Before);
    const std::string said = refusal(change.Typed);
    EXPECT_NE(said.find(change.Said), std::string::npos) << said;
    EXPECT_EQ(folder.Read("broker.json"), change.Before);
  }
}

TEST(BrokerIdentity, IsMadeOnceAndIsSafeInTopics) {
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
