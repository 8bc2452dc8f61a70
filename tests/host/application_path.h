#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "disk/posix_file_system.h"
#include "doubles/expect.h"
#include "doubles/temp_folder.h"
#include "events/events_on_disk.h"
#include "install/first_install.h"

namespace keplo::tests {

/// A folder with a first install, the home of a user who has nothing registered.
class ApplicationPath {
 public:
  ApplicationPath() {
    PosixFileSystem files;
    CreateFirstInstall(Path(), files);
  }

  std::filesystem::path Path() const { return folder_.Path() / "app"; }
  std::filesystem::path Home() const { return folder_.Path() / "home"; }
  std::string Read(const std::string& name) const { return folder_.Read(name); }
  std::string Write(const std::string& name, const std::string& content) const {
    return folder_.Write(name, content).string();
  }

  void AddEvents(const std::vector<clsKeploEvent>& events) const {
    EventsOnDisk disk(Path());
    for (const auto& event : events) ASSERT_TRUE(disk.Events.Add(std::make_shared<clsKeploEvent>(event)));
  }
  /// Binds an event to the key of kPower, with actions as host.json has them.
  void AddPowerEvent(const std::string& actions) const {
    AddEvents({{"17", "Lamp on", "POWER from NEC", "NEC&TV_POWER", true, 5}});
    Write("app/host.json", R"({"version": 1, "events": {"17": {"actions": )" + actions + "}}}");
  }

 private:
  TempFolder folder_;
};

/// Recordings of one key each.
inline const std::string kSamples = std::string(KEPLO_SOURCE_DIR) + "/samples/";
inline const std::string kPower = kSamples + "nec_tv_power.mode2", kMute = kSamples + "sony_tv_mute.mode2";
inline const clsKeploEvent kMuteEvent{"18", "Quiet", "MUTE from SONY", "SONY&TV_MUTE", true, 3};

}  // namespace keplo::tests
