#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "component_loader/class_file.h"
#include "disk/json_file.h"
#include "failure.h"
#include "host_program/event_book.h"

namespace keplo::host {
namespace {

using nlohmann::json;
using std::filesystem::path;

void Require(bool holds) {
  if (!holds) __builtin_trap();
}

/// Runs a step that may fail with a text.
/// @return whether it did not
template <typename Step>
bool Succeeds(Step step) {
  try {
    step();
    return true;
  } catch (const Failure& failure) {
    Require(!std::string_view(failure.what()).empty());
    return false;
  }
}

/// A folder in memory, where a save costs no disk.
path Folder() {
  std::string pattern =
      std::filesystem::exists("/dev/shm") ? "/dev/shm/keplo-fuzz-XXXXXX" : "/tmp/keplo-fuzz-XXXXXX";
  Require(mkdtemp(pattern.data()) != nullptr);
  return pattern;
}

/// A number, which no event of the book has.
void CheckNewEventID(EventBook& book, const json& before) {
  const std::string eventID = book.NewEventID({"5", "x"});
  Require(eventID != "5" && std::stoll(eventID) > 0 && !before["events"].contains(eventID));
}

/// The book with actions of one event changed, forgotten, and all else as it was.
void CheckChanges(const path& file, const json& before) {
  const json lamp = json::array({{{"kind", "run"}, {"program", "lamp"}}});
  EventBook book(file);
  for (const auto& event : before["events"].items()) Require(book.ActionsOf(event.key()).is_array());
  CheckNewEventID(book, before);
  book.SetActions("17", lamp);
  Require(EventBook(file).ActionsOf("17") == lamp);
  book.Forget("17");
  json kept = ParseEventBook(ReadJsonFile(file), file), wanted = before;
  wanted["events"].erase("17");
  wanted.erase("next_event_id");
  kept.erase("next_event_id");
  Require(kept == wanted);
}

}  // namespace
}  // namespace keplo::host

/// A host.json and a class file of any bytes: what can be read is kept through changes, all else is refused
/// with a text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace keplo::host;
  static const path file = Folder() / "host.json";
  const std::string text(reinterpret_cast<const char*>(data), size);
  Succeeds([&] { Require(keplo::ComponentNamedBy(text, "class.json").is_absolute()); });
  json book;
  const bool whole = Succeeds([&] { book = ParseEventBook(text, file); });
  if (size % 16 != 0) return 0;  // files take more time than all else
  std::ofstream(file, std::ios::binary) << text;
  if (whole) {
    CheckChanges(file, book);
  } else {
    Require(!Succeeds([&] { EventBook{file}; }) && keplo::ReadJsonFile(file) == text);
  }
  return 0;
}
