#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "disk/posix_file_system.h"
#include "doubles/temp_folder.h"
#include "events/col_cls_keplo_events.h"
#include "events/data.h"
#include "formats/recording.h"
#include "install/first_install.h"

namespace keplo::tests {

/// A folder with a first install, the home of a user who has nothing registered.
class ApplicationPath {
 public:
  ApplicationPath() {
    PosixFileSystem files;
    BringFirstInstall(Path(), files);
  }

  std::filesystem::path Path() const { return folder_.Path() / "app"; }
  std::filesystem::path Home() const { return folder_.Path() / "home"; }
  std::string Read(const std::string& name) const { return folder_.Read(name); }
  std::string Write(const std::string& name, const std::string& content) const {
    return folder_.Write(name, content).string();
  }

  void AddEvents(const std::vector<clsKeploEvent>& events) const {
    const ui::SystemClock clock;
    Data data(Path(), clock);
    colclsKeploEvents collection(data, clock);
    for (const clsKeploEvent& event : events) {
      ASSERT_TRUE(collection.Add(std::make_shared<clsKeploEvent>(event)));
    }
  }

  /// A recording in which a key of the samples is pressed so many times.
  std::string Presses(const std::string& sample, int times) const {
    const Recording recording = LoadRecording(Sample(sample));
    std::string lines;
    for (int press = 0; press < times; ++press) {
      lines += OneLineText(std::get<PulseTrain>(recording.Presses.front()));
    }
    return Write(sample + ".txt", lines);
  }

  static std::string Sample(const std::string& name) {
    return std::string(KEPLO_SOURCE_DIR) + "/samples/" + name + ".mode2";
  }

 private:
  TempFolder folder_;
};

inline const clsKeploEvent kPowerEvent{"17", "Lamp on", "POWER from NEC", "NEC&TV_POWER", true, 0};
inline const clsKeploEvent kMuteEvent{"18", "Quiet", "MUTE from SONY", "SONY&TV_MUTE", true, 3};

}  // namespace keplo::tests
