#pragma once

#include <string>

#include "host/component_entry.h"
#include "ui/list_view.h"

namespace keplo {

/// Fills in the details of an event from its row in the control's list.
/// @return false if the list has no such event; details are then unchanged
bool DescribeEvent(const ui::ListView& list, const std::string& eventID, EventDetails& details);

/// The EventID of the highlighted row; empty if there is none.
std::string HighlightedEvent(const ui::ListView& list);

}  // namespace keplo
