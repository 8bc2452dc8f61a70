#pragma once

#include <QComboBox>
#include <QListWidget>
#include <QMainWindow>
#include <QPushButton>

#include "host_program/plugin_host.h"

namespace keplo::host {

/// The host on screen: the plug-in's view, its menu, the log of events, and the buttons that change the event
/// map.
class HostWindow : public QMainWindow {
 public:
  static constexpr int kMostLogLines = 1000;

  explicit HostWindow(PluginHost& host);
  ~HostWindow() override;

 private:
  void FillMenus();
  QWidget* EventButtons();
  QPushButton* Button(const QString& caption, const QString& tip, std::function<void()> clicked);
  void ShowEvents();
  std::string ChosenEvent() const;
  void TellResult(std::int32_t result, const QString& done);
  void DeleteEvent();
  void AskForProgram();
  void AddLogLine(const QString& line);

  PluginHost& host_;
  QComboBox* events_;
  QListWidget* log_;
  QPushButton* modify_ = nullptr;
  QPushButton* delete_ = nullptr;
  QPushButton* program_ = nullptr;
};

}  // namespace keplo::host
