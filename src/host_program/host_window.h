#pragma once

#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QPushButton>
#include <optional>

#include "host_program/plugin_host.h"

namespace keplo::host {

/// The window of the host: the plug-in's view and menu, a log of events and of presses without events, and
/// buttons for adding an event and for changing the one that is highlighted in the view.
class HostWindow : public QMainWindow, private EventOutput {
 public:
  static constexpr int kMostLogLines = 1000;

  explicit HostWindow(PluginHost& host);
  ~HostWindow() override;

 private:
  void EventRaised(const RaisedEvent& event) override;
  void KeyChanged(PressStage stage, const HeardKey& key) override;
  void ErrorReported(const HostErrorRecord& record) override;
  void Logged(LogLevel level, const std::string& text) override;

  void FillMenus();
  QWidget* EventButtons();
  QPushButton* Button(const QString& caption, const QString& tip, std::function<void()> clicked);
  void ShowChosenEvent();
  QString Named(const std::string& eventID) const;
  void ShowResult(std::int32_t result, const QString& done);
  void DeleteEvent();
  void AskForProgram();
  std::optional<QString> AskForCommandLine(const QString& event, const QString& shown);
  void AddLogLine(const QString& line);

  PluginHost& host_;
  QLabel* chosen_;
  QListWidget* log_;
  QPushButton* modify_ = nullptr;
  QPushButton* delete_ = nullptr;
  QPushButton* program_ = nullptr;
};

}  // namespace keplo::host
