#include "window/port_list.h"

#include <string>

#include "config/parse_number.h"
#include "ui/wait_notice.h"

namespace keplo {

namespace {

constexpr std::int32_t kLastPort = 30;
constexpr int kOpenAttempts = 3;
constexpr std::int32_t kPauseAfterFailure = 200'000;  // microseconds
constexpr std::size_t kPortDigits = 2;

std::string NameOf(std::int32_t port) { return "COM " + std::to_string(port); }

}  // namespace

void PortList::Fill() {
  list_.Clear();
  Probe();
  if (list_.Count() == 0) {
    dialogue_.Tell("There is no COM port available");
    return;
  }
  // Probing has left the line at the last port.
  line_.OpenCom(settings_.ComPortNr);
  line_.RTS(-1);
  line_.TXD(0);
}

void PortList::Choose(std::int32_t port) { list_.SelectText(NameOf(port)); }

void PortList::Probe() {
  ui::WaitNotice notice(window_, "Looking for serial ports.");
  for (std::int32_t port = 1; port <= kLastPort; ++port) {
    notice.Show("Looking for serial ports: COM " + std::to_string(port) + " of " + std::to_string(kLastPort));
    if (!Opens(port)) continue;
    list_.Add(NameOf(port));
    if (port == settings_.ComPortNr) list_.Select(list_.Count() - 1);
    list_.SetBackColour(ui::kGreen);
  }
}

bool PortList::Opens(std::int32_t port) {
  for (int attempt = 1; attempt <= kOpenAttempts; ++attempt) {
    if (line_.OpenCom(port) == 1) return true;
  }
  return false;
}

void PortList::OpenSelected() {
  const std::string entry = list_.Text();
  const std::int32_t port = WithoutFraction<std::int32_t>(entry.substr(entry.size() - kPortDigits));
  settings_.ComPortNr = port;
  keeper_.StoreSetting("COMPORT", port);
  const ui::WaitNotice notice(window_, "Opening " + entry + ". This takes a second at most.");
  note_.KeepLineMessages();
  int attempt = 1;
  while (attempt <= kOpenAttempts && line_.OpenCom(port) != 1) {
    line_.uDelay(kPauseAfterFailure);
    ++attempt;
  }
  line_.RTS(-1);
  // A port that needs more than one attempt is unreliable.
  list_.SetBackColour(attempt == 1 ? ui::kGreen : ui::kRed);
  line_.RTS(-1);
  line_.TXD(0);
  note_.Show();
}

}  // namespace keplo
