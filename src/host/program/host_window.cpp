#include "host/program/host_window.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>
#include <utility>

namespace keplo::host {

namespace {

QString Shown(const std::string& text) { return QString::fromStdString(text); }

/// The actions of an event as a command line; empty if they are more than one program.
QString CommandLineOf(const nlohmann::json& actions) {
  if (actions.size() != 1 || actions[0].value("kind", "") != "run") return {};
  QStringList words{Shown(actions[0].value("program", ""))};
  for (const auto& argument : actions[0].value("arguments", std::vector<std::string>()))
    words << Shown(argument);
  for (QString& word : words) {
    if (word.isEmpty() || word.contains(QLatin1Char(' '))) word = QLatin1Char('"') + word + QLatin1Char('"');
  }
  return words.join(QLatin1Char(' '));
}

nlohmann::json ActionsOf(const QString& commandLine) {
  const QStringList words = QProcess::splitCommand(commandLine);
  if (words.isEmpty()) return nlohmann::json::array();
  std::vector<std::string> arguments;
  for (const QString& word : words.mid(1)) arguments.push_back(word.toStdString());
  return {{{"kind", "run"}, {"program", words.front().toStdString()}, {"arguments", arguments}}};
}

}  // namespace

HostWindow::HostWindow(PluginHost& host) : host_(host), events_(new QComboBox), log_(new QListWidget) {
  setWindowTitle(QStringLiteral("InputKeplo"));
  setWindowIcon(QIcon(Shown(host_.Plugin().InputIconFileName())));
  auto* splitter = new QSplitter(Qt::Vertical);
  if (QWidget* view = host_.CreateView(splitter)) splitter->addWidget(view);
  auto* below = new QWidget;
  auto* column = new QVBoxLayout(below);
  column->addWidget(EventButtons());
  auto* heading = new QLabel(QStringLiteral("Event &log"));
  heading->setBuddy(log_);
  log_->setAccessibleName(QStringLiteral("Event log"));
  column->addWidget(heading);
  column->addWidget(log_);
  splitter->addWidget(below);
  splitter->setStretchFactor(0, 1);
  setCentralWidget(splitter);
  FillMenus();
  ShowEvents();
  statusBar();

  host_.OnEvent = [this](const RaisedEvent& event) { AddLogLine(Shown(EventLine(event))); };
  host_.OnError = [this](const HostErrorRecord& record) {
    AddLogLine(Shown(record.ErrorDate + "  " + record.ErrorProcedure + ": " + record.ErrorDescription));
  };
}

HostWindow::~HostWindow() {
  host_.OnEvent = nullptr;
  host_.OnError = nullptr;
}

void HostWindow::FillMenus() {
  QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
  file->addAction(QStringLiteral("&Quit"), QKeySequence::Quit, this, &QWidget::close);
  QMenu* plugin = menuBar()->addMenu(QStringLiteral("&Plug-in"));
  std::vector<std::string> items;
  host_.Plugin().InputGetPluginMenuItems(items);
  for (std::size_t place = 0; place < items.size(); ++place) {
    plugin->addAction(Shown(items[place]), this, [this, place] {
      auto index = static_cast<std::int16_t>(place);
      host_.Plugin().InputCallMenuItem(index);
      ShowEvents();
    });
  }
  QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
  help->addAction(QStringLiteral("&About InputKeplo"), this,
                  [this] { host_.Plugin().InputDisplayAboutBox(); });
}

QWidget* HostWindow::EventButtons() {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* label = new QLabel(QStringLiteral("&Event:"));
  label->setBuddy(events_);
  events_->setAccessibleName(QStringLiteral("Event to modify or delete"));
  layout->addWidget(label);
  layout->addWidget(events_, 1);
  layout->addWidget(Button(QStringLiteral("&Add..."), QStringLiteral("Bind a new event to a command"),
                           [this] { TellResult(host_.AddEvent(), QStringLiteral("The event was added")); }));
  modify_ = Button(QStringLiteral("&Modify..."), QStringLiteral("Change the event"), [this] {
    TellResult(host_.ModifyEvent(ChosenEvent()), QStringLiteral("The event was changed"));
  });
  delete_ = Button(QStringLiteral("&Delete"), QStringLiteral("Remove the event"), [this] { DeleteEvent(); });
  program_ = Button(QStringLiteral("P&rogram..."), QStringLiteral("Choose the program that the event runs"),
                    [this] { AskForProgram(); });
  for (QPushButton* button : {modify_, delete_, program_}) layout->addWidget(button);
  return row;
}

QPushButton* HostWindow::Button(const QString& caption, const QString& tip, std::function<void()> clicked) {
  auto* button = new QPushButton(caption);
  button->setToolTip(tip);
  connect(button, &QPushButton::clicked, this, [this, clicked = std::move(clicked)] {
    try {
      clicked();
    } catch (const std::exception& failure) {
      QMessageBox::warning(this, windowTitle(), QString::fromUtf8(failure.what()));
    }
  });
  return button;
}

void HostWindow::ShowEvents() {
  const QVariant chosen = events_->currentData();
  events_->clear();
  for (const std::string& eventID : host_.EventIDs()) {
    events_->addItem(Shown(host_.Describe(eventID).EventName + " (" + eventID + ")"), Shown(eventID));
  }
  if (const int place = events_->findData(chosen); place >= 0) events_->setCurrentIndex(place);
  for (QPushButton* button : {modify_, delete_, program_}) button->setEnabled(events_->count() > 0);
}

std::string HostWindow::ChosenEvent() const { return events_->currentData().toString().toStdString(); }

void HostWindow::TellResult(std::int32_t result, const QString& done) {
  ShowEvents();
  const QString text = result == kInputDone     ? done
                       : result == kInputFailed ? QStringLiteral("That failed; the event log tells why")
                                                : QStringLiteral("Cancelled");
  statusBar()->showMessage(text);
}

void HostWindow::DeleteEvent() {
  const QString question = QStringLiteral("Delete the event %1?").arg(events_->currentText().toHtmlEscaped());
  if (QMessageBox::question(this, windowTitle(), question) != QMessageBox::Yes) return;
  TellResult(host_.DeleteEvent(ChosenEvent()), QStringLiteral("The event was deleted"));
}

void HostWindow::AskForProgram() {
  const std::string eventID = ChosenEvent();
  bool accepted = false;
  const QString commandLine = QInputDialog::getText(
      this, windowTitle(), QStringLiteral("Program and arguments that the event runs; empty for none:"),
      QLineEdit::Normal, CommandLineOf(host_.Book().ActionsOf(eventID)), &accepted);
  if (accepted) host_.Book().SetActions(eventID, ActionsOf(commandLine));
}

void HostWindow::AddLogLine(const QString& line) {
  if (log_->count() >= kMostLogLines) delete log_->takeItem(0);
  log_->addItem(line);
  log_->scrollToBottom();
}

}  // namespace keplo::host
