#pragma once

#include <filesystem>

#include "events/col_cls_keplo_events.h"
#include "events/data.h"
#include "ui/clock.h"
#include "ui/list_view.h"

namespace keplo {

/// The events of an application path, for programs without a control.
struct EventsOnDisk {
  /// Nothing is read before Events.Initialise(List).
  explicit EventsOnDisk(const std::filesystem::path& appPath)
      : Database(appPath, Clock), Events(Database, Clock) {}

  ui::SystemClock Clock;
  Data Database;
  ui::ListView List;
  colclsKeploEvents Events;
};

}  // namespace keplo
