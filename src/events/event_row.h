#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "events/cls_keplo_event.h"
#include "ui/list_view.h"

namespace keplo {

/// Fields of an event list row, numbered like the sub-items of the list.
enum EventFields { kEventName = 0, kEventDescription, kInfraredCommand, kActivated, kZone, kEventID };

/// A boolean as a list row shows it: "True" or "False".
std::string BooleanText(bool value);
/// @return true for "True"; false for any other text
bool IsTrue(std::string_view text);

/// The zone number in a list row.
/// @return 0 for a text that is not a 16-bit number
std::int16_t ZoneNumber(std::string_view text);

/// Sets up the six columns of the event list.
void SetUpColumns(ui::ListView& list);

/// Writes the six texts of an event to a row of the event list.
/// @throws Failure if the row does not exist
void WriteEventRow(ui::ListView& list, int row, const clsKeploEvent& event);

/// Appends a row without a key for an event.
void AppendEventRow(ui::ListView& list, const clsKeploEvent& event);

/// Rewrites the first row with the event's EventID; does nothing if there is none.
void UpdateEventRow(ui::ListView& list, const clsKeploEvent& event);

}  // namespace keplo
