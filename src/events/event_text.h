#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "events/cls_keplo_event.h"
#include "ui/list_view.h"

namespace keplo {

/// A boolean as a list row shows it: "True" or "False".
std::string BooleanText(bool value);

/// @return true for "True"; false for any other text
bool IsTrue(std::string_view text);

/// The number of a zone as a list row shows it.
/// @return 0 for a text that is no number of 16 bits
std::int16_t ZoneNumber(std::string_view text);

/// Writes the six texts of an event into a row of the event list, field 0 to 5: EventName, EventDescription,
/// IRCommand, Enabled, Zone, EventID.
/// @throws Failure for a row that does not exist
void WriteEventRow(ui::ListView& list, int row, const clsKeploEvent& event);

}  // namespace keplo
