#include "broker/bridge.h"

#include <openssl/ssl.h>

#include <atomic>
#include <map>
#include <nlohmann/json.hpp>

#include "broker/broker_check.h"
#include "broker/moved_device.h"
#include "disk/descriptor.h"
#include "failure.h"
#include "mosquitto_server.h"

namespace keplo::broker {
namespace {

constexpr const char* kIdentity = "0123abcd";

/// A bridge as a program uses it, with what it logs and is asked to send.
struct Program {
  explicit Program(BrokerSettings settings) : Link(std::move(settings), kIdentity, Uses()) {}

  Bridge::Uses Uses() {
    return {[] {}, [this](const SendRequest& request) { Requests.push_back(request); },
            [this](const Report& report) { Log += report.Text + "\n"; }};
  }
  bool Logs(const std::string& text) {
    return tests::Until([&] {
      Link.Serve();
      return Log.find(text) != std::string::npos;
    });
  }
  void Press(const std::string& command) { Link.Tell({KeyStage::Press, "17", "Lamp", command, 3, "now", 1}); }

  const std::shared_ptr<std::string> Kept = std::make_shared<std::string>();
  std::string& Log = *Kept;
  std::vector<SendRequest> Requests;
  Bridge Link;
};

class BrokerBridge : public testing::Test {
 protected:
  BrokerSettings Settings(int port) const {
    BrokerSettings settings;
    settings.Host = "127.0.0.1";
    settings.Port = static_cast<std::uint16_t>(port);
    settings.Send = true;
    return settings;
  }
  TestFolder folder_;
};

TEST_F(BrokerBridge, TellsPressesOnceAndNeverLater) {
  MosquittoServer server(folder_);
  Program program(Settings(server.Port()));
  program.Link.SetEvents({{"17", "Lamp", "NEC&A"}});
  ASSERT_TRUE(program.Logs("Connected"));
  {
    Observer observer(server.Port());
    program.Press("before");
    ASSERT_TRUE(observer.Sees("keplo/0123abcd/event/17", 1));
    EXPECT_EQ(observer.All("keplo/0123abcd/event/17")[0].Payload,
              R"({"event_type":"press","name":"Lamp","command":"before","zone":3,"time":"now","count":1})");
    EXPECT_FALSE(observer.All("keplo/0123abcd/event/17")[0].Retained);

    // A broker that stops without hanging up reads later what was written to it meanwhile.
    server.Stop();
    program.Press("stopped");
    ASSERT_TRUE(tests::Until([&] { return program.Link.DroppedPresses() > 0; }));
    server.GoOn();
    EXPECT_TRUE(program.Logs("not told, as"));
    ASSERT_TRUE(tests::Until([&] {
      program.Press("after");
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      return observer.All("keplo/0123abcd/event/17").size() >= 2;
    }));
    EXPECT_EQ(observer.All("keplo/0123abcd/event/17")[1].Payload.find("stopped"), std::string::npos);
  }
  server.Kill();
  ASSERT_TRUE(program.Logs("was lost"));
  const std::size_t dropped = program.Link.DroppedPresses();
  program.Press("away");
  program.Link.Tell({KeyStage::Release, "17", "Lamp", "away", 3, "now", 1});
  ASSERT_TRUE(tests::Until([&] { return program.Link.DroppedPresses() == dropped + 1; }));
  server.Start();
  Observer observer(server.Port());
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/status", 1)) << "a broker without memory is told all again";
  EXPECT_TRUE(observer.Sees("homeassistant/device/keplo-0123abcd/config", 1));
  program.Link.Tell({KeyStage::Release, "17", "Lamp", "away", 3, "now", 1});
  program.Press("back");
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/event/17", 1));
  EXPECT_NE(observer.All("keplo/0123abcd/event/17")[0].Payload.find("back"), std::string::npos)
      << "a release without its press is none";
  std::shared_ptr<std::string> log;
  {
    Program nobodyHears(Settings(FreePort()));
    log = nobodyHears.Kept;
    for (int i = 0; i < 2; ++i) nobodyHears.Press("away");
  }
  EXPECT_NE(log->find("2 key presses were not told"), std::string::npos) << *log;
}

TEST_F(BrokerBridge, KeepsTheDeviceLikeTheEventMap) {
  const std::string config = "homeassistant/device/keplo-0123abcd/config", status = "keplo/0123abcd/status";
  MosquittoServer server(folder_);
  Observer observer(server.Port());
  {
    Program program(Settings(server.Port()));
    program.Link.SetEvents({{"1", "A \xff\"+", "NEC&A"}, {"a/b", "", "NEC&B"}});
    ASSERT_TRUE(observer.Sees(status, 1));
    program.Link.SetEvents({{"1", "A", "NEC&A"}});
    ASSERT_TRUE(observer.Sees(config, 3));
    observer.Publish("homeassistant/status", "online");
    ASSERT_TRUE(observer.Sees(status, 2)) << "after a birth";
  }
  {
    BrokerSettings elsewhere = Settings(server.Port());
    elsewhere.DiscoveryPrefix = "ha2";
    elsewhere.Prefix = "kk";
    Program moved(elsewhere);
    moved.Link.SetEvents({});
    ASSERT_TRUE(observer.Sees("ha2/device/keplo-0123abcd/config", 1));
    moved.Link.ForgetAtEnd({true, true});
  }
  ASSERT_TRUE(observer.Sees("ha2/device/keplo-0123abcd/config", 2));
  EXPECT_EQ(observer.All("ha2/device/keplo-0123abcd/config")[1].Payload, "");
  ASSERT_TRUE(observer.Sees("kk/0123abcd/status", 2));
  EXPECT_EQ(observer.All("kk/0123abcd/status")[1].Payload, "") << "no topic is left behind";
  ASSERT_TRUE(observer.Sees(status, 3));
  EXPECT_EQ(observer.All(status)[2].Payload, "offline") << "at a clean end";
  Program later(Settings(server.Port()));
  later.Link.SetEvents({});
  ASSERT_TRUE(observer.Sees(config, 7)) << "what went while no host ran is taken out too";
  const auto told = observer.All(config);
  const auto components = [&](std::size_t i) { return nlohmann::json::parse(told[i].Payload)["components"]; };
  EXPECT_TRUE(components(0).contains("event_a_2fb"));
  EXPECT_EQ(components(1)["event_a_2fb"], nlohmann::json({{"platform", "event"}}));
  EXPECT_FALSE(components(2).contains("event_a_2fb"));
  EXPECT_EQ(components(2)["event_1"]["state_topic"], "keplo/0123abcd/event/1");
  EXPECT_EQ(components(5)["event_1"], nlohmann::json({{"platform", "event"}}));
  for (const auto& message : told) EXPECT_TRUE(message.Retained);
}

TEST_F(BrokerBridge, RefusesRequestsThatAreNoneOfNow) {
  MosquittoServer server(folder_);
  Program program(Settings(server.Port()));
  Observer observer(server.Port());
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/status", 1));
  observer.Publish("keplo/0123abcd/send", R"({"command":"NEC&A"})", /*retain=*/true);
  ASSERT_TRUE(program.Logs("retained")) << "though it came at once";
  observer.Publish("keplo/0123abcd/send", R"({"timings":[9000,-4500,560],"modulation":36000})");
  ASSERT_TRUE(tests::Until([&] {
    program.Link.Serve();
    return !program.Requests.empty();
  }));
  EXPECT_EQ(program.Requests[0].Timings, (std::vector<std::int32_t>{9000, -4500, 560}));
  EXPECT_EQ(program.Requests[0].Modulation, 36000);

  for (const char* payload :
       {"", "[1]", "{}", R"({"timings":[]})", R"({"timings":[1,2]})", R"({"timings":[-5]})",
        R"({"timings":[1.5]})", R"({"timings":[1500000,-600000]})", R"({"timings":[99999999999999]})",
        R"({"timings":[1],"modulation":"x"})", R"({"command":""})", R"({"timings":"x","command":"NEC&A"})"}) {
    EXPECT_THROW(ParseSendRequest(payload), Failure) << payload;
  }
}

TEST_F(BrokerBridge, LetsNoFloodThrough) {
  MosquittoServer server(folder_);
  Program program(Settings(server.Port()));
  Observer observer(server.Port());
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/status", 1));
  HeardSignal signal;
  signal.Timings = {9000, -4500, 560};
  for (int i = 0; i < 30; ++i) program.Link.Tell(signal);
  program.Press("behind them");
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/event/17", 1));
  EXPECT_LE(observer.All("keplo/0123abcd/signal").size(), 10U);
  for (int i = 0; i < 30; ++i) observer.Publish("keplo/0123abcd/send", R"({"command":"NEC&A"})");
  EXPECT_TRUE(program.Logs("more than two came in a second"));
  EXPECT_EQ(program.Requests.size(), 2U);
}

TEST_F(BrokerBridge, GivesWayToAnotherOfItsIdentity) {
  MosquittoServer server(folder_, "allow_anonymous true\nlog_dest topic\nlog_type notice\n");
  Program program(Settings(server.Port()));
  std::optional<Observer> twin;
  for (int times = 0; times < 3; ++times) {
    ASSERT_TRUE(tests::Until([&] { return program.Link.IsUp(); }));
    twin.emplace(server.Port(), "keplo-0123abcd");
    ASSERT_TRUE(tests::Until([&] { return !program.Link.IsUp(); }));
  }
  twin->Publish("keplo/0123abcd/status", "online", /*retain=*/true);
  ASSERT_TRUE(program.Logs("Another program throws this one off"));
  EXPECT_TRUE(tests::Until([&] {
    const auto logged = twin->All("$SYS/broker/log/N");
    return std::any_of(logged.begin(), logged.end(), [](const auto& line) {
      return line.Payload.find(" keplo-0123abcd-watch-") != std::string::npos;
    });
  })) << "it fights";
  program.Log.clear();
  Observer observer(server.Port());
  twin->Publish("keplo/0123abcd/status", "offline", /*retain=*/true);
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/status", 2));
  twin.reset();
  EXPECT_TRUE(program.Logs("Connected"));
}

TEST_F(BrokerBridge, IsNotBroughtDownByWhatIsNoBroker) {
  const std::string key = folder_ / "key.pem", certificate = folder_ / "cert.pem";
  ASSERT_EQ(std::system(("openssl req -x509 -newkey rsa:2048 -nodes -subj /CN=127.0.0.1 -days 1 -keyout " +
                         key + " -out " + certificate + " 2>/dev/null")
                            .c_str()),
            0);
  const std::unique_ptr<SSL_CTX, void (*)(SSL_CTX*)> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
  SSL_CTX_use_certificate_file(context.get(), certificate.c_str(), SSL_FILETYPE_PEM);
  SSL_CTX_use_PrivateKey_file(context.get(), key.c_str(), SSL_FILETYPE_PEM);
  const Descriptor listener(socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  ASSERT_EQ(bind(listener.Number(), reinterpret_cast<sockaddr*>(&address), size), 0);
  ASSERT_EQ(listen(listener.Number(), 9), 0);
  getsockname(listener.Number(), reinterpret_cast<sockaddr*>(&address), &size);
  BrokerSettings settings = Settings(ntohs(address.sin_port));
  const std::string unknownProperty("\x20\x06\0\0\x03\x7f\0\x01", 8);
  std::atomic<bool> tls = false, ends = false;
  const auto serve = [&](int peer) {
    const std::unique_ptr<SSL, void (*)(SSL*)> secure(SSL_new(context.get()), SSL_free);
    SSL_set_fd(secure.get(), peer);
    if (tls && SSL_accept(secure.get()) == 1) {
      if (ends) {
        SSL_shutdown(secure.get());
      } else {
        SSL_write(secure.get(), unknownProperty.data(), static_cast<int>(unknownProperty.size()));
      }
    } else {
      send(peer, unknownProperty.data(), unknownProperty.size(), MSG_NOSIGNAL);
    }
    for (char byte = 0; recv(peer, &byte, 1, 0) > 0;) continue;
  };
  const std::string welcome("\x20\x03\0\0\0", 5);
  std::atomic<bool> hangsUp = false;
  std::thread other([&] {
    for (int peer = 0; (peer = accept(listener.Number(), nullptr, nullptr)) >= 0; close(peer)) {
      if (!hangsUp) {
        serve(peer);
      } else if (char login[512]; recv(peer, login, sizeof login, 0) > 0) {
        send(peer, welcome.data(), welcome.size(), MSG_NOSIGNAL);
      }
    }
  });
  EXPECT_TRUE(Program(settings).Logs("no MQTT"));
  hangsUp = true;
  std::string said;
  EXPECT_FALSE(CheckBroker(settings, kIdentity, {}, [&](const auto&, const auto& result) { said = result; }));
  EXPECT_NE(said.find("broker's log"), std::string::npos) << said;
  hangsUp = false;
  tls = settings.Tls = true;
  settings.Ca = certificate;
  // It has proved who it is.
  EXPECT_TRUE(Program(settings).Logs("no MQTT"));
  ends = true;
  EXPECT_TRUE(Program(settings).Logs("hangs up")) << "though its connection stays open";
  shutdown(listener.Number(), SHUT_RDWR);
  other.join();
}

TEST_F(BrokerBridge, SaysWhatToDoAboutARefusal) {
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
  chmod((folder_ / "empty").c_str(), 0600);
  chmod((folder_ / "right").c_str(), 0600);
  chmod((folder_ / "wrong").c_str(), 0600);
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

TEST_F(BrokerBridge, ChecksWhatABrokerGrantsAndDoesNotDeliver) {
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
  for (const auto& told : observer.All(config))
    EXPECT_EQ(told.Payload, "{}") << "the check must not take the device out";
}

TEST_F(BrokerBridge, LeavesNoDeviceWhereItWasToldBefore) {
  MosquittoServer server(folder_);
  const std::string config = "homeassistant/device/keplo-0123abcd/config";
  const BrokerSettings before = Settings(server.Port());
  BrokerSettings now = before;
  now.DiscoveryPrefix = "ha2";
  now.Port = 1;
  EXPECT_EQ(TakeOutOfOldPlace(before, now, folder_.Path()), "") << "where no host has ever run";
  folder_.Write("broker.id", std::string(kIdentity) + "\n");
  {
    Observer observer(server.Port());
    EXPECT_EQ(TakeOutOfOldPlace(before, now, folder_.Path()), "");
    ASSERT_TRUE(observer.Sees(config, 1));
    EXPECT_EQ(observer.All(config)[0].Payload, "");
  }
  server.Kill();
  const std::string left = TakeOutOfOldPlace(before, now, folder_.Path());
  EXPECT_NE(left.find("broker forget --port " + std::to_string(server.Port()) +
                      " --discovery-prefix 'homeassistant'"),
            std::string::npos)
      << left;
}

}  // namespace
}  // namespace keplo::broker
