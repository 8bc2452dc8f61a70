#include "broker/broker_check.h"

#include <map>

#include "bridged_program.h"
#include "broker/moved_device.h"

namespace keplo::broker {
namespace {

using BrokerChecked = BrokerBridge;

TEST_F(BrokerChecked, SaysWhatToDoAboutARefusal) {
  const auto run = [&](const std::string& command) {
    return std::system(("(cd " + folder_.Path().string() + " && " + command + ") >/dev/null 2>&1").c_str());
  };
  ASSERT_EQ(run("mosquitto_passwd -c -b users keplo secret && mosquitto_passwd -b users half secret && chmod "
                "644 users && openssl req -x509 -newkey "
                "rsa:2048 "
                "-nodes -keyout key.pem -out cert.pem -subj /CN=elsewhere -days 1 && chmod 644 key.pem && "
                "openssl pkey "
                "-aes256 -passout pass:x -in key.pem -out secret.pem && openssl genrsa -out other.pem 2048"),
            0);
  folder_.Write(
      "access",
      "user keplo\ntopic read #\n\nuser half\ntopic readwrite keplo/#\ntopic read homeassistant/#\n");
  const std::string secured = "allow_anonymous false\npassword_file " + (folder_ / "users") + "\nacl_file " +
                              (folder_ / "access") + "\n";
  const std::string tls = "allow_anonymous true\ncertfile " + (folder_ / "cert.pem") + "\nkeyfile " +
                          (folder_ / "key.pem") + "\n";
  folder_.Write("right", "secret\n");
  folder_.Write("wrong", "terces\n");
  folder_.Write("empty", "\nsecret\n");
  for (const char* secret : {"empty", "right", "wrong"}) chmod((folder_ / secret).c_str(), 0600);
  chmod((folder_ / "access").c_str(), 0644);
  const MosquittoServer password(folder_, secured), encrypted(folder_, tls), open(folder_);
  const struct {
    const char* Name;
    int Port;
    std::function<void(BrokerSettings&)> Change;
    const char* Step;
    const char* Said;
  } refusals[] = {
      {"no name", open.Port(), [](BrokerSettings& s) { s.Host = "no-such-host.invalid"; }, "name",
       "is not known"},
      {"nobody", FreePort(), [](BrokerSettings&) {}, "connection", "Is it running"},
      {"wrong password", password.Port(),
       [&](BrokerSettings& s) { s.User = "keplo", s.PasswordFile = folder_ / "wrong"; }, "login",
       "password_file"},
      {"open password file", password.Port(),
       [&](BrokerSettings& s) { s.User = "keplo", s.PasswordFile = folder_ / "access"; }, "login",
       "chmod 600"},
      {"empty password", password.Port(),
       [&](BrokerSettings& s) { s.User = "keplo", s.PasswordFile = folder_ / "empty"; }, "login",
       "first line"},
      {"access list", password.Port(),
       [&](BrokerSettings& s) { s.User = "keplo", s.PasswordFile = folder_ / "right"; }, "right to publish",
       "access list"},
      {"unknown authority", encrypted.Port(), [](BrokerSettings& s) { s.Tls = true; }, "secure connection",
       "\"ca\""},
      {"other host name", encrypted.Port(),
       [&](BrokerSettings& s) { s.Tls = true, s.Ca = folder_ / "cert.pem"; }, "secure connection",
       "\"host\""},
      {"no right to discovery", password.Port(),
       [&](BrokerSettings& s) { s.User = "half", s.PasswordFile = folder_ / "right"; },
       "right to tell Home Assistant", "access list"},
      {"encrypted key", encrypted.Port(),
       [&](BrokerSettings& s) {
         s.Tls = true, s.Ca = s.Certificate = folder_ / "cert.pem", s.Key = folder_ / "secret.pem";
       },
       "secure connection", "openssl pkey"},
      {"other key", encrypted.Port(),
       [&](BrokerSettings& s) {
         s.Tls = true, s.Ca = s.Certificate = folder_ / "cert.pem", s.Key = folder_ / "other.pem";
       },
       "secure connection", "does not belong"},
      {"plain to TLS", encrypted.Port(), [](BrokerSettings&) {}, "login", "\"tls\": true"},
      {"TLS to plain", open.Port(), [](BrokerSettings& s) { s.Tls = true; }, "secure connection",
       "belong together"},
  };
  for (const auto& refusal : refusals) {
    BrokerSettings settings = Settings(refusal.Port);
    refusal.Change(settings);
    std::string step, said;
    EXPECT_FALSE(CheckBroker(settings, kIdentity, {},
                             [&](const std::string& which, const std::string& result) {
                               step = which;
                               said = result;
                             }))
        << refusal.Name;
    EXPECT_EQ(step, refusal.Step) << refusal.Name << ": " << said;
    EXPECT_NE(said.find(refusal.Said), std::string::npos) << refusal.Name << ": " << said;
    Program program(settings);
    program.Link.SetEvents({});
    EXPECT_TRUE(program.Logs(refusal.Said)) << refusal.Name << ": " << program.Log;
  }
  std::shared_ptr<std::string> log;
  {
    BrokerSettings settings = Settings(password.Port());
    settings.User = "keplo", settings.PasswordFile = folder_ / "right";
    Program refused(settings);
    log = refused.Kept;
    ASSERT_TRUE(refused.Logs("Connected"));
    refused.Press("refused");
    EXPECT_TRUE(refused.Logs("publish to keplo/0123abcd/event/17"));
  }
  EXPECT_EQ(log->find("not told"), std::string::npos) << *log;
}

TEST_F(BrokerChecked, DetectsABrokerThatGrantsButDoesNotDeliver) {
  folder_.Write("access",
                "topic readwrite #\n\nuser deaf\ntopic readwrite keplo/#\ntopic write homeassistant/#\n"
                "topic write rooms/#\n");
  const MosquittoServer server(folder_, "allow_anonymous true\nacl_file " + (folder_ / "access") + "\n");
  Observer observer(server.Port());
  const std::string config = "homeassistant/device/keplo-0123abcd/config";
  observer.Publish(config, "{}", /*retain=*/true);
  ASSERT_TRUE(observer.Sees(config, 1));
  BrokerSettings settings = Settings(server.Port());
  const CheckedReceivers rooms[] = {{"rooms/+/ir", {"rooms/kitchen/ir"}}};
  EXPECT_TRUE(CheckBroker(settings, kIdentity, rooms, [](const auto&, const auto&) {}));
  settings.User = "deaf";
  std::map<std::string, std::string> said;
  EXPECT_FALSE(CheckBroker(settings, kIdentity, rooms,
                           [&](const std::string& step, const std::string& result) { said[step] = result; }));
  EXPECT_NE(said["right to tell Home Assistant"].find("not to read it back"), std::string::npos);
  EXPECT_NE(said["right to hear rooms/kitchen/ir"].find("access list"), std::string::npos);
  for (const auto& reported : observer.All(config))
    EXPECT_EQ(reported.Payload, "{}") << "the check must not take the device out";
}

TEST_F(BrokerChecked, RemovesTheDeviceFromWhereItWasAnnouncedBefore) {
  MosquittoServer server(folder_);
  const std::string config = "homeassistant/device/keplo-0123abcd/config";
  const BrokerSettings before = Settings(server.Port());
  BrokerSettings now = before;
  now.DiscoveryPrefix = "ha2";
  now.Port = 1;
  EXPECT_EQ(RemoveFromOldBroker(before, now, folder_.Path()), "") << "where no host has ever run";
  folder_.Write("broker.id", std::string(kIdentity) + "\n");
  {
    Observer observer(server.Port());
    EXPECT_EQ(RemoveFromOldBroker(before, now, folder_.Path()), "");
    ASSERT_TRUE(observer.Sees(config, 1));
    EXPECT_EQ(observer.All(config)[0].Payload, "");
  }
  server.Kill();
  const std::string left = RemoveFromOldBroker(before, now, folder_.Path());
  EXPECT_NE(left.find("broker forget --port " + std::to_string(server.Port()) +
                      " --discovery-prefix 'homeassistant'"),
            std::string::npos)
      << left;
}

}  // namespace
}  // namespace keplo::broker
