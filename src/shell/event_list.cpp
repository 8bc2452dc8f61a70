#include "shell/event_list.h"

#include <array>

#include "events/event_text.h"

namespace keplo {

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

void AppendEventRow(ui::ListView& list, const clsKeploEvent& event) {
  WriteEventRow(list, list.Add(), event);
}

void UpdateEventRow(ui::ListView& list, const clsKeploEvent& event) {
  const int row = list.FindRow(kEventID, event.EventID);
  if (row != 0) WriteEventRow(list, row, event);
}

}  // namespace keplo
