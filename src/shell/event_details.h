#pragma once

#include <string>

#include "host/component_entry.h"
#include "ui/list_view.h"

namespace keplo {

/// What the rows of the control's list tell of an event.
/// @return false if the list has no such event; details stay as they are then
bool DescribeEvent(const ui::ListView& list, const std::string& eventID, EventDetails& details);

/// The EventID of the highlighted row; empty if none is.
std::string HighlightedEvent(const ui::ListView& list);

}  // namespace keplo
