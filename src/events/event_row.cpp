#include "events/event_row.h"

#include <array>
#include <charconv>

namespace keplo {

std::string BooleanText(bool value) { return value ? "True" : "False"; }

bool IsTrue(std::string_view text) { return text == "True"; }

std::int16_t ZoneNumber(std::string_view text) {
  std::int16_t number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end ? number : std::int16_t{0};
}

void SetUpColumns(ui::ListView& list) {
  static const std::array<ui::ListColumn, ui::ListView::kFields> kColumns = {{{"Event Name", 2000},
                                                                              {"Event Description", 2500},
                                                                              {"Infrared Command", 2500},
                                                                              {"Activated", 1000},
                                                                              {"Zone", 600},
                                                                              {"EventID", 1000}}};
  list.ClearColumns();
  for (const ui::ListColumn& column : kColumns) list.AddColumn(column.Heading, column.Width);
}

void WriteEventRow(ui::ListView& list, int row, const clsKeploEvent& event) {
  const ui::ListView::Texts texts = {event.EventName,
                                     event.EventDescription,
                                     event.IRCommand,
                                     BooleanText(event.Enabled),
                                     std::to_string(event.Zone),
                                     event.EventID};
  for (int field = 0; field < ui::ListView::kFields; ++field) {
    list.SetText(row, field, texts[static_cast<std::size_t>(field)]);
  }
}

void AppendEventRow(ui::ListView& list, const clsKeploEvent& event) {
  WriteEventRow(list, list.Add(), event);
}

void UpdateEventRow(ui::ListView& list, const clsKeploEvent& event) {
  const int row = list.FindRow(kEventID, event.EventID);
  if (row != 0) WriteEventRow(list, row, event);
}

}  // namespace keplo
