#pragma once

#include "broker/bridge.h"
#include "mosquitto_server.h"

namespace keplo::broker {

inline constexpr const char* kIdentity = "0123abcd";

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
  void Press(const std::string& command) {
    Link.Publish({KeyStage::Press, "17", "Lamp", command, 3, "now", 1});
    ++Pressed;
  }
  /// Presses until the broker has taken one; a press that it does not take at once is not told to it.
  bool Tells(const std::string& command) {
    const std::size_t told = Link.ConfirmedPresses();
    return tests::Until([&] {
      Press(command);
      tests::Until([&] { return Link.ConfirmedPresses() + Link.DroppedPresses() == Pressed; });
      return Link.ConfirmedPresses() > told;
    });
  }

  const std::shared_ptr<std::string> Kept = std::make_shared<std::string>();
  std::string& Log = *Kept;
  std::vector<SendRequest> Requests;
  std::size_t Pressed = 0;
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

}  // namespace keplo::broker
