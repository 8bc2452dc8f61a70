#include <initializer_list>
#include <optional>

#include "doubles/outside_screen.h"
#include "host/running_host.h"

namespace keplo::tests {

namespace {

/// The host program with its window, used as a person uses it.
class ConfigureWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (const std::string missing = OutsideScreen::Missing(); !missing.empty()) {
      GTEST_SKIP() << "needs " << missing;
    }
    screen_.emplace();
    app_.AddPowerEvent("[]");
    host_.Set("DISPLAY", screen_->Display());
    host_.Set("QT_QPA_PLATFORM", "xcb");
    host_.Set("QT_SCALE_FACTOR", "1");
  }

  /// Waits for one more event than there have been.
  bool EventComes() const {
    const std::size_t before = host_.Output().size();
    return Until([&] { return host_.Output().size() > before; });
  }

  /// Goes through ports of the list in the configuration window, by a key each: what is typed while a port
  /// opens is dropped, so each is waited for.
  bool Configure(const std::string& key, std::initializer_list<int> ports) {
    if (screen_->Focus("^InputKeplo$").empty()) return false;
    screen_->Keys("alt+p Return");
    if (screen_->Focus("Configuration").empty()) return false;
    screen_->Keys("Tab Tab Tab");  // after Send, Record and the pulse length
    for (const int port : ports) {
      screen_->Keys(key);
      if (!FileHolds("COMPORT= " + std::to_string(port) + "\r\n")) return false;
    }
    screen_->Keys("shift+Tab shift+Tab shift+Tab shift+Tab Return");  // OK, the last stop
    return Until([&] { return screen_->Windows("Configuration").empty(); });
  }

  bool FileHolds(const std::string& text) const {
    return Until([&] { return app_.Read("app/keplo.cfg").find(text) != std::string::npos; });
  }

  std::optional<OutsideScreen> screen_;
  ApplicationPath app_;
  RunningHost host_{app_};
};

TEST_F(ConfigureWindowTest, GoesOnWithThePortThatTheUserChose) {
  std::vector<std::string> options(500, kPower);
  options.insert(options.begin(), {"--json", "--real-time", "--replay"});
  host_.Start(options, 0, RunningHost::Window::Shown);
  ASSERT_TRUE(EventComes());
  ASSERT_TRUE(Configure("Down", {2, 3, 4})) << app_.Read("app/keplo.cfg");
  EXPECT_TRUE(EventComes());

  ASSERT_TRUE(Configure("Up", {3, 2, 1})) << app_.Read("app/keplo.cfg");
  EXPECT_TRUE(EventComes());

  screen_->Focus("^InputKeplo$");
  screen_->Keys("ctrl+q");
  EXPECT_EQ(host_.Wait(), 0) << host_.Log();
}

}  // namespace

}  // namespace keplo::tests
