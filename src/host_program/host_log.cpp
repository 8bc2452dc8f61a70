#include "host_program/host_log.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "program/json_line.h"
#include "program/local_time.h"
#include "program/press_line.h"
#include "program/printable.h"

namespace keplo::host {

namespace {

std::string Prefix(bool toJournal, LogLevel level) {
  return toJournal ? "<" + std::to_string(static_cast<int>(level)) + ">" : "";
}

}  // namespace

void HostLog::Write(LogLevel level, const std::string& text) const {
  std::cerr << (toJournal_.Error ? Prefix(true, level) : "keplo-host: ") << Printable(text) << std::endl;
}

void HostLog::Event(const RaisedEvent& event) const {
  std::cout << (json_ ? EventJsonLine(event) : Prefix(toJournal_.Output, LogLevel::Info) + EventLine(event))
            << std::endl;
}

void HostLog::Error(const HostErrorRecord& record) const {
  if (!json_) {
    Write(LogLevel::Error, record.ErrorSource + " " + record.ErrorProcedure + ": " + record.ErrorDescription);
    return;
  }
  nlohmann::ordered_json line;
  line["time"] = LocalTime();
  line["error_number"] = record.ErrorNumber;
  line["error_source"] = record.ErrorSource;
  line["error_procedure"] = record.ErrorProcedure;
  line["error_description"] = record.ErrorDescription;
  line["error_detail"] = record.ErrorDetail;
  std::cout << JsonLine(line) << std::endl;
}

void HostLog::Key(std::string_view what, const HeardKey& key) const {
  if (!keys_) return;
  std::cout << (json_ ? "" : Prefix(toJournal_.Output, LogLevel::Info))
            << TextOf({what, key.Command, key.Code, key.Count, key.HeldMs}, json_) << std::endl;
}

void HostLog::Summary(const std::string& text) const {
  (json_ ? std::cerr : std::cout) << Prefix(json_ ? toJournal_.Error : toJournal_.Output, LogLevel::Info)
                                  << text << std::endl;
}

}  // namespace keplo::host
