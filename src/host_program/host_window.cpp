#include "host_program/host_window.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>
#include <optional>
#include <utility>

#include "host_program/event_command_line.h"
#include "program/local_time.h"
#include "program/printable.h"

namespace keplo::host {

namespace {

QString Shown(const std::string& text) { return QString::fromStdString(text); }

/// Shows a text, which is never interpreted as markup.
QMessageBox::StandardButton Show(QWidget* parent, QMessageBox::Icon icon, const QString& text,
                                 QMessageBox::StandardButtons buttons) {
  QMessageBox box(icon, parent->windowTitle(), text, buttons, parent);
  box.setTextFormat(Qt::PlainText);
  if (buttons.testFlag(QMessageBox::No)) box.setDefaultButton(QMessageBox::No);
  return static_cast<QMessageBox::StandardButton>(box.exec());
}

bool AskYesNo(QWidget* parent, const QString& question) {
  return Show(parent, QMessageBox::Question, question, QMessageBox::Yes | QMessageBox::No) ==
         QMessageBox::Yes;
}

}  // namespace

HostWindow::HostWindow(PluginHost& host) : host_(host), chosen_(new QLabel), log_(new QListWidget) {
  setWindowTitle(QStringLiteral("InputKeplo"));
  // The plug-in's windows show it too.
  QApplication::setWindowIcon(QIcon(Shown(host_.Plugin().InputIconFileName())));
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
  ShowChosenEvent();
  statusBar();
  resize(sizeHint().boundedTo(screen()->availableSize()));  // by itself it stops at two thirds of the screen

  host_.AddOutput(*this);
  host_.OnListShown = [this] { ShowChosenEvent(); };
}

HostWindow::~HostWindow() {
  host_.RemoveOutput(*this);
  host_.OnListShown = nullptr;
}

void HostWindow::EventRaised(const RaisedEvent& event) { AddLogLine(Shown(EventLine(event))); }

/// Logs keys that were held for more than one signal.
void HostWindow::KeyChanged(PressStage stage, const HeardKey& key) {
  if (stage != PressStage::Released || key.Count < 2) return;
  const std::string name = key.Command.empty() ? "code " + key.Code : key.Command;
  AddLogLine(Shown(Printable(LocalTime() + "  " + name + " was held for " + std::to_string(key.HeldMs) +
                             " ms, " + std::to_string(key.Count) + " signals")));
}

void HostWindow::ErrorReported(const HostErrorRecord& record) {
  AddLogLine(Shown(record.ErrorDate + "  " + record.ErrorProcedure + ": " + record.ErrorDescription));
}

void HostWindow::Logged(LogLevel level, const std::string& text) {
  if (level <= LogLevel::Notice) AddLogLine(Shown(Printable(LocalTime() + "  " + text)));
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
  chosen_->setTextFormat(Qt::PlainText);
  chosen_->setAccessibleName(QStringLiteral("Event to modify or delete"));
  // A long name is cut off; the tip shows all of it.
  chosen_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  layout->addWidget(chosen_, 1);
  layout->addWidget(Button(QStringLiteral("&Add..."), QStringLiteral("Bind a new event to a command"),
                           [this] { ShowResult(host_.AddEvent(), QStringLiteral("The event was added")); }));
  modify_ = Button(QStringLiteral("&Modify..."), QStringLiteral("Change the highlighted event"), [this] {
    ShowResult(host_.ModifyEvent(host_.HighlightedEvent()), QStringLiteral("The event was changed"));
  });
  delete_ = Button(QStringLiteral("&Delete"), QStringLiteral("Remove the highlighted event"),
                   [this] { DeleteEvent(); });
  program_ = Button(QStringLiteral("P&rogram..."),
                    QStringLiteral("Choose the program that the highlighted event runs"),
                    [this] { AskForProgram(); });
  for (QPushButton* button : {modify_, delete_, program_}) layout->addWidget(button);
  return row;
}

QPushButton* HostWindow::Button(const QString& caption, const QString& tip, std::function<void()> clicked) {
  auto* button = new QPushButton(caption);
  button->setToolTip(tip);
  connect(button, &QPushButton::clicked, this, [this, clicked = std::move(clicked)] {
    statusBar()->clearMessage();  // it tells of the click before
    try {
      clicked();
    } catch (const std::exception& failure) {
      Show(this, QMessageBox::Warning, QString::fromUtf8(failure.what()), QMessageBox::Ok);
    }
  });
  return button;
}

/// Runs after every change of the view, so that the buttons always apply to the row that is shown as
/// highlighted.
void HostWindow::ShowChosenEvent() {
  const std::string eventID = host_.HighlightedEvent();
  chosen_->setText(eventID.empty() ? QStringLiteral("Highlight an event in the list to change it")
                                   : QStringLiteral("Event: ") + Named(eventID));
  chosen_->setToolTip(chosen_->text().toHtmlEscaped());
  for (QPushButton* button : {modify_, delete_, program_}) button->setEnabled(!eventID.empty());
}

QString HostWindow::Named(const std::string& eventID) const {
  return Shown(Printable(host_.Describe(eventID).EventName + " (" + eventID + ")"));
}

void HostWindow::ShowResult(std::int32_t result, const QString& done) {
  const QString text = result == kInputDone     ? done
                       : result == kInputFailed ? QStringLiteral("That failed; the event log tells why")
                                                : QStringLiteral("Cancelled");
  statusBar()->showMessage(text);
}

void HostWindow::DeleteEvent() {
  const std::string eventID = host_.HighlightedEvent();
  if (!AskYesNo(this, QStringLiteral("Delete the event %1?").arg(Named(eventID)))) return;
  const std::int32_t result = host_.DeleteEvent(eventID);
  ShowResult(result, QStringLiteral("The event was deleted"));
  if (host_.ListDiffersFromMap()) {
    statusBar()->showMessage(QStringLiteral(
        "The event was taken off the list, but the database cannot be written; it comes back"));
  }
}

void HostWindow::AskForProgram() {
  const std::string eventID = host_.HighlightedEvent();
  const QString event = Named(eventID);
  host_.Book().ReadIfChanged();
  const nlohmann::json actions = host_.Book().ActionsOf(eventID);
  const std::optional<QString> shown = CommandLineOf(actions);
  if (!shown &&
      !AskYesNo(this, QStringLiteral("The event %1 does what cannot be shown as one command line:\n\n%2"
                                     "\n\nReplace it by one program?")
                          .arg(event, Shown(actions.dump(2))))) {
    return;
  }
  const std::optional<QString> commandLine = AskForCommandLine(event, shown.value_or(QString()));
  if (commandLine && commandLine != shown) {
    host_.Book().SetActions(eventID, WithCommandLine(actions, *commandLine));
    statusBar()->showMessage(QStringLiteral("The program of the event was changed"));
  }
}

/// @return none if the user cancelled
std::optional<QString> HostWindow::AskForCommandLine(const QString& event, const QString& shown) {
  QInputDialog dialog(this);
  dialog.setWindowTitle(windowTitle());
  dialog.setLabelText(QStringLiteral("Program and arguments that the event %1 runs; empty for none:")
                          .arg(QString(event).replace('&', QLatin1String("&&"))));
  dialog.setTextValue(shown);
  for (auto* label : dialog.findChildren<QLabel*>()) label->setTextFormat(Qt::PlainText);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.textValue();
}

void HostWindow::AddLogLine(const QString& line) {
  if (log_->count() >= kMostLogLines) delete log_->takeItem(0);
  log_->addItem(line);
  log_->scrollToBottom();
}

}  // namespace keplo::host
