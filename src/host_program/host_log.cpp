#include "host_program/host_log.h"

#include <ctime>
#include <iostream>
#include <nlohmann/json.hpp>

namespace keplo::host {

namespace {

/// Text from recordings and databases need not be UTF-8.
std::string Dump(const nlohmann::ordered_json& json) {
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

/// A line end inside a text would forge a line of its own.
std::string OneLine(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  }
  return text;
}

std::string Prefix(bool toJournal, LogLevel level) {
  return toJournal ? "<" + std::to_string(static_cast<int>(level)) + ">" : "";
}

}  // namespace

std::string LocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char text[40];
  return {text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &local)};
}

std::string EventLine(const RaisedEvent& event) {
  return OneLine(event.Time + "  event " + event.EventID + "  " + event.EventName + "  " + event.Command +
                 "  zone " + std::to_string(event.Zone));
}

void HostLog::Write(LogLevel level, const std::string& text) const {
  std::cerr << (toJournal_.Error ? Prefix(true, level) : "keplo-host: ") << OneLine(text) << std::endl;
}

void HostLog::Event(const RaisedEvent& event) const {
  if (!json_) {
    std::cout << Prefix(toJournal_.Output, LogLevel::Info) << EventLine(event) << std::endl;
    return;
  }
  nlohmann::ordered_json line;
  line["time"] = event.Time;
  line["event_id"] = event.EventID;
  line["event_name"] = event.EventName;
  line["command"] = event.Command;
  line["zone"] = event.Zone;
  std::cout << Dump(line) << std::endl;
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
  std::cout << Dump(line) << std::endl;
}

void HostLog::Summary(const std::string& text) const {
  (json_ ? std::cerr : std::cout) << Prefix(json_ ? toJournal_.Error : toJournal_.Output, LogLevel::Info)
                                  << text << std::endl;
}

}  // namespace keplo::host
