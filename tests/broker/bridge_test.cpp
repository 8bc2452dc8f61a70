#include <openssl/ssl.h>

#include <atomic>
#include <nlohmann/json.hpp>

#include "bridged_program.h"
#include "broker/broker_check.h"
#include "disk/descriptor.h"
#include "failure.h"

namespace keplo::broker {
namespace {

TEST_F(BrokerBridge, PublishesPressesOnceAndNeverLater) {
  MosquittoServer server(folder_);
  Program program(Settings(server.Port()));
  program.Link.SetEvents({{"17", "Lamp", "NEC&A"}});
  ASSERT_TRUE(program.Logs("Connected"));
  {
    Observer observer(server.Port());
    ASSERT_TRUE(program.Tells("before"));
    ASSERT_TRUE(observer.Sees("keplo/0123abcd/event/17", 1));
    EXPECT_EQ(observer.All("keplo/0123abcd/event/17")[0].Payload,
              R"({"event_type":"press","name":"Lamp","command":"before","zone":3,"time":"now","count":1})");
    EXPECT_FALSE(observer.All("keplo/0123abcd/event/17")[0].Retained);

    // A broker that stops without hanging up reads later what was written to it meanwhile.
    server.Stop();
    const std::size_t before = program.Link.DroppedPresses();
    program.Press("stopped");
    ASSERT_TRUE(tests::Until([&] { return program.Link.DroppedPresses() > before; }));
    server.GoOn();
    EXPECT_TRUE(program.Logs("not told, as"));
    ASSERT_TRUE(program.Tells("after"));
    ASSERT_TRUE(observer.Sees("keplo/0123abcd/event/17", 2));
    EXPECT_EQ(observer.All("keplo/0123abcd/event/17")[1].Payload.find("stopped"), std::string::npos);
  }
  server.Kill();
  ASSERT_TRUE(program.Logs("was lost"));
  const std::size_t dropped = program.Link.DroppedPresses();
  program.Press("away");
  program.Link.Publish({KeyStage::Release, "17", "Lamp", "away", 3, "now", 1});
  ASSERT_TRUE(tests::Until([&] { return program.Link.DroppedPresses() == dropped + 1; }));
  server.Start();
  Observer observer(server.Port());
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/status", 1)) << "a broker without memory is told all again";
  EXPECT_TRUE(observer.Sees("homeassistant/device/keplo-0123abcd/config", 1));
  program.Link.Publish({KeyStage::Release, "17", "Lamp", "away", 3, "now", 1});
  ASSERT_TRUE(program.Tells("back"));
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

TEST_F(BrokerBridge, KeepsTheDeviceInStepWithTheEventMap) {
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
  ASSERT_TRUE(observer.Sees(config, 6)) << "what went while no host ran is taken out too";
  const auto told = observer.All(config);
  const auto components = [&](std::size_t i) { return nlohmann::json::parse(told[i].Payload)["components"]; };
  const std::size_t removal =
      components(4).contains("event_1") ? 4 : 5;  // it may be up before it knows its events
  EXPECT_TRUE(components(0).contains("event_a_2fb"));
  EXPECT_EQ(components(1)["event_a_2fb"], nlohmann::json({{"platform", "event"}}));
  EXPECT_FALSE(components(2).contains("event_a_2fb"));
  EXPECT_EQ(components(2)["event_1"]["state_topic"], "keplo/0123abcd/event/1");
  EXPECT_EQ(components(removal)["event_1"], nlohmann::json({{"platform", "event"}}));
  for (const auto& message : told) EXPECT_TRUE(message.Retained);
}

TEST_F(BrokerBridge, RefusesInvalidAndOutdatedRequests) {
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

TEST_F(BrokerBridge, LimitsFloods) {
  MosquittoServer server(folder_);
  Program program(Settings(server.Port()));
  Observer observer(server.Port());
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/status", 1));
  HeardSignal signal;
  signal.Timings = {9000, -4500, 560};
  const auto begin = std::chrono::steady_clock::now();
  const auto most = [&](std::size_t eachSecond) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(std::chrono::steady_clock::now() - begin);
    return eachSecond * static_cast<std::size_t>(1 + seconds.count());
  };
  for (int i = 0; i < 30; ++i) program.Link.Publish(signal);
  ASSERT_TRUE(program.Tells("behind them"));
  ASSERT_TRUE(observer.Sees("keplo/0123abcd/event/17", 1));
  EXPECT_LE(observer.All("keplo/0123abcd/signal").size(), most(10));
  for (int i = 0; i < 30; ++i) observer.Publish("keplo/0123abcd/send", R"({"command":"NEC&A"})");
  EXPECT_TRUE(program.Logs("more than two came in a second"));
  EXPECT_LE(program.Requests.size(), most(2));
}

TEST_F(BrokerBridge, GivesWayToAnotherHostOfItsIdentity) {
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

TEST_F(BrokerBridge, SurvivesServersThatAreNotBrokers) {
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

}  // namespace
}  // namespace keplo::broker
