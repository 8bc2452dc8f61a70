#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "events/cls_keplo_event.h"
#include "ui/list_view.h"

namespace keplo {

/// Fields of an event list row, numbered as the list's sub-items are.
enum EventFields { kEventName = 0, kEventDescription, kInfraredCommand, kActivated, kZone, kEventID };

/// A boolean as a list row shows it: "True" or "False".
std::string BooleanText(bool value);
/// @return true for "True"; false for any other text
bool IsTrue(std::string_view text);

/// The number of a zone as a list row shows it.
/// @return 0 for a text that is no number of 16 bits
std::int16_t ZoneNumber(std::string_view text);

/// Gives the event list its six columns.
void SetUpColumns(ui::ListView& list);

/// Writes the six texts of an event into a row of the event list.
/// @throws Failure for a row that does not exist
void WriteEventRow(ui::ListView& list, int row, const clsKeploEvent& event);

/// Adds a row for an event at the end of the list, without a key.
void AppendEventRow(ui::ListView& list, const clsKeploEvent& event);

/// Rewrites the first row that carries the event's EventID; nothing changes if there is none.
void UpdateEventRow(ui::ListView& list, const clsKeploEvent& event);

}  // namespace keplo
