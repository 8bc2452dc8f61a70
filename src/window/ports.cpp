#include <string>

#include "config/numbers.h"
#include "ui/wait_notice.h"
#include "window/form1.h"

namespace keplo {

namespace {

constexpr std::int32_t kLastPort = 30;
constexpr int kOpenAttempts = 3;
constexpr std::int32_t kPauseAfterFailure = 200'000;  // microseconds
constexpr std::size_t kPortDigits = 2;

}  // namespace

void Form1::ListAvailableCOM() {
  ComList.Clear();
  ProbePorts();
  if (ComList.Count() == 0) {
    Tell("There is no COM port available");
    return;
  }
  // Probing has moved the line to the last port.
  line_.OpenCom(mod_.Settings.ComPortNr);
  line_.RTS(-1);
  line_.TXD(0);
}

void Form1::ProbePorts() {
  ui::WaitNotice notice(*this, "Looking for serial ports.");
  for (std::int32_t port = 1; port <= kLastPort; ++port) {
    notice.Show("Looking for serial ports: COM " + std::to_string(port) + " of " + std::to_string(kLastPort));
    if (!PortOpens(port)) continue;
    ComList.Add("COM " + std::to_string(port));
    if (port == mod_.Settings.ComPortNr) ComList.Select(ComList.Count() - 1);
    ComList.SetBackColour(ui::kGreen);
  }
}

bool Form1::PortOpens(std::int32_t port) {
  for (int attempt = 1; attempt <= kOpenAttempts; ++attempt) {
    if (line_.OpenCom(port) == 1) return true;
  }
  return false;
}

void Form1::ComList_Click() {
  const std::string entry = ComList.Text();
  const std::int32_t port = WithoutFraction<std::int32_t>(entry.substr(entry.size() - kPortDigits));
  mod_.Settings.ComPortNr = port;
  KeepSetting("COMPORT", port);
  const ui::WaitNotice notice(*this, "Opening " + entry + ". This takes a second at most.");
  int attempt = 1;
  while (attempt <= kOpenAttempts && line_.OpenCom(port) != 1) {
    line_.uDelay(kPauseAfterFailure);
    ++attempt;
  }
  line_.RTS(-1);
  // A port that needs to be asked twice is not to be relied on.
  ComList.SetBackColour(attempt == 1 ? ui::kGreen : ui::kRed);
  line_.RTS(-1);
  line_.TXD(0);
}

}  // namespace keplo
