#include "events/event_text.h"

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

}  // namespace keplo
