#pragma once

#include "events/cls_keplo_event.h"
#include "ui/list_view.h"

namespace keplo {

/// Fields of an event list row, numbered as the list's sub-items are.
enum EventFields { kEventName = 0, kEventDescription, kInfraredCommand, kActivated, kZone, kEventID };

/// Gives the event list its six columns.
void SetUpColumns(ui::ListView& list);

/// Adds a row for an event at the end of the list, without a key.
void AppendEventRow(ui::ListView& list, const clsKeploEvent& event);

/// Rewrites the first row that carries the event's EventID; nothing changes if there is none.
void UpdateEventRow(ui::ListView& list, const clsKeploEvent& event);

}  // namespace keplo
