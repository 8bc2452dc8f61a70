#include "host_program/host_window.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>
#include <optional>
#include <utility>

#include "host_program/event_command_line.h"

namespace keplo::host {

namespace {

QString Shown(const std::string& text) { return QString::fromStdString(text); }

/// Texts of events and failures are no markup, whatever they hold.
QMessageBox::StandardButton Show(QWidget* parent, QMessageBox::Icon icon, const QString& text,
                                 QMessageBox::StandardButtons buttons) {
  QMessageBox box(icon, parent->windowTitle(), text, buttons, parent);
  box.setTextFormat(Qt::PlainText);
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

bool Agrees(QWidget* parent, const QString& question) {
  return Show(parent, QMessageBox::Question, question, QMessageBox::Yes | QMessageBox::No) ==
         QMessageBox::Yes;
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
      ShowEvents();  // the plug-in may have done its part
      Show(this, QMessageBox::Warning, QString::fromUtf8(failure.what()), QMessageBox::Ok);
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
  if (!Agrees(this, QStringLiteral("Delete the event %1?").arg(events_->currentText()))) return;
  const std::string eventID = ChosenEvent();
  const std::int32_t result = host_.DeleteEvent(eventID);
  TellResult(result, QStringLiteral("The event was deleted"));
  if (host_.ListDiffersFromMap()) {
    statusBar()->showMessage(QStringLiteral(
        "The event was taken off the list, but the database cannot be written; it comes back"));
  }
}

void HostWindow::AskForProgram() {
  const std::string eventID = ChosenEvent();
  host_.Book().ReadIfChanged();
  const nlohmann::json actions = host_.Book().ActionsOf(eventID);
  const std::optional<QString> shown = CommandLineOf(actions);
  if (!shown && !Agrees(this, QStringLiteral("The event does what cannot be shown as one command line:\n\n%1"
                                             "\n\nReplace it by one program?")
                                  .arg(Shown(actions.dump(2))))) {
    return;
  }
  bool accepted = false;
  const QString commandLine = QInputDialog::getText(
      this, windowTitle(), QStringLiteral("Program and arguments that the event runs; empty for none:"),
      QLineEdit::Normal, shown.value_or(QString()), &accepted);
  if (accepted && commandLine != shown) {
    host_.Book().SetActions(eventID, WithCommandLine(actions, commandLine));
  }
}

void HostWindow::AddLogLine(const QString& line) {
  if (log_->count() >= kMostLogLines) delete log_->takeItem(0);
  log_->addItem(line);
  log_->scrollToBottom();
}

}  // namespace keplo::host
