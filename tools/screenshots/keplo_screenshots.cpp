#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QTimer>
#include <cstdio>
#include <functional>

#include "disk/posix_file_system.h"
#include "doubles/fake_line.h"
#include "doubles/temp_folder.h"
#include "events/event_table.h"
#include "line/open_line.h"
#include "looks.h"
#include "qt/control_view.h"
#include "qt/qt_boxes.h"
#include "qt/qt_event_dialog.h"
#include "shell/keplo.h"
#include "window/new_protocol.h"
#include "window/recorded_signal.h"
#include "window_scene.h"

namespace keplo {
namespace {

constexpr std::int16_t kStandardReceiver = 0;
constexpr const char* kConfig =
    "[General]\r\nCOMPORT= 1\r\nPROTOCOL= 0\r\nPROCDELAY= 10\r\nITYPE= 0\r\nBEEPON= 1\r\nVEXIL= 1\r\n\r\n"
    "[Television]\r\nGPROTO= 0\r\nSENDPLS= 560\r\nREPEAT= 0\r\nBITG= 10\r\nBIT0= 10\r\nBIT1= 1000\r\n"
    "GREPEAT= 1\r\n\r\nG1010,POWER\r\nG1011,VOLUME UP\r\nG1001,VOLUME DOWN\r\n\r\n[END]\r\n";

/// Writes what a widget shows, as PNG.
bool Save(QWidget& widget, const QString& path) {
  const bool saved = widget.grab().save(path, "PNG", 0);
  if (!saved)
    std::fprintf(stderr, "Cannot write %s: give a folder that can be written to\n", qPrintable(path));
  return saved;
}

/// Saves the box that an action shows, and closes it.
bool SaveBox(const QString& path, const std::function<void()>& action) {
  bool saved = false;
  QTimer::singleShot(0, qApp, [&] {
    QWidget& box = *QApplication::activeModalWidget();
    saved = Save(box, path);
    box.close();
  });
  action();
  return saved;
}

/// A control with three events, one of them switched off, on a line that is there.
class Scene {
 public:
  Scene() {
    folder_.Write("keplo.cfg", kConfig);
    CreateEventTable(folder_.Path() / "inputKeplo.mdb", files_);
    Data data(folder_.Path(), clock_);
    colclsKeploEvents events(data, clock_);
    for (const clsKeploEvent& event :
         {clsKeploEvent{"101", "TV power", "Lamps follow the set", "Television&POWER", true, 0},
          clsKeploEvent{"102", "Louder", "Raises the amplifier", "Television&VOLUME UP", true, 2},
          clsKeploEvent{"103", "Quieter", "Lowers the amplifier", "Television&VOLUME DOWN", false, 2}}) {
      events.Add(std::make_shared<clsKeploEvent>(event));
    }
    control_ = std::make_unique<Keplo>(mod_, line_, KeploWindows{boxes_, dialog_}, clock_);
    control_->InputInitialise(nullptr);
    control_->InputStartMonitoring();
  }

  bool SaveControl(const QString& path) {
    control_->ListView1.Select(2);
    qt::ControlView view(*control_, nullptr);
    view.resize(view.sizeHint());
    view.show();
    QCoreApplication::processEvents();
    return Save(view, path);
  }

  bool SaveDialog(const QString& path) {
    return SaveBox(path, [this] {
      HostInputEvent event;
      event.EventID = "102";
      control_->InputModifyEvent(event);
    });
  }

 private:
  tests::TempFolder folder_;
  PosixFileSystem files_;
  ui::SystemClock clock_;
  qt::QtBoxes boxes_;
  qt::QtEventDialog dialog_;
  tests::FakeLine line_;
  KeploMod mod_{folder_.Path(), files_};
  std::unique_ptr<Keplo> control_;
};

/// The main window of a computer without a receiver, and its first menu.
bool SaveWithoutReceiver(const QDir& folder) {
  LineSpec nothing;
  nothing.Ports = {1};
  const OpenedLine line = OpenLine(nothing, {}, kStandardReceiver);
  tests::WindowScene scene(false);
  scene.Form().DescribeLine = line.Describe;
  scene.Click("RecButton");
  bool saved = Save(scene.View(), folder.filePath(QStringLiteral("window_no_receiver.png")));
  auto& menu = *scene.View().findChild<QMenu*>(QStringLiteral("FileMenu"));
  const QMenuBar& bar = *scene.View().findChild<QMenuBar*>();
  menu.popup(bar.mapToGlobal(bar.rect().bottomLeft()));
  QCoreApplication::processEvents();
  QPixmap picture = scene.View().grab();
  QPainter(&picture).drawPixmap(bar.geometry().bottomLeft(), menu.grab());
  saved = picture.save(folder.filePath(QStringLiteral("file_menu.png")), "PNG", 0) && saved;
  menu.close();
  return saved;
}

/// The main window on its way: one recording is not yet trusted, a second one of the same code is.
bool SaveWindow(const QDir& folder) {
  tests::WindowScene scene;
  const auto save = [&](const char* file) {
    QCoreApplication::processEvents();
    return Save(scene.View(), folder.filePath(QLatin1String(file)));
  };
  scene.Record();
  bool saved = save("window_red.png");
  scene.Record();
  saved = save("window_green.png") && saved;
  scene.Click("GExt");
  saved = save("window_zoomed.png") && saved;
  scene.Click("GReset");
  scene.Click("MinButton");
  saved = save("window_small.png") && saved;
  scene.Click("MinButton");

  const QPalette light = QApplication::palette();
  QApplication::setPalette(tests::DarkPalette());
  scene.Redraw();
  saved = save("window_dark.png") && saved;
  QApplication::setPalette(light);
  const tests::UserLooks large(2, false);
  scene.Redraw();
  return save("window_large_letters.png") && saved;
}

/// The protocol dialog as an action opens it.
bool SaveProtocolDialog(tests::WindowScene& scene, const QString& path, void (Form1::*open)()) {
  (scene.Form().*open)();
  QCoreApplication::processEvents();
  bool saved = false;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == QLatin1String("NewProtocol") && window->isVisible())
      saved = Save(*window, path);
  }
  scene.Form().ProtocolDialog()->CancelButton_Click();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return saved;
}

/// The protocol dialog: from the defaults, for a protocol that there is, and for a recording.
bool SaveProtocolDialogs(const QDir& folder) {
  tests::WindowScene scene;
  const auto save = [&](const char* file, void (Form1::*open)()) {
    return SaveProtocolDialog(scene, folder.filePath(QLatin1String(file)), open);
  };
  bool saved = save("protocol_dialog.png", &Form1::FileNewMenu_Click);
  saved = save("protocol_dialog_edit.png", &Form1::EditMenu_Click) && saved;
  {
    const tests::UserLooks dark(1, true);
    saved = save("protocol_dialog_dark.png", &Form1::FileNewMenu_Click) && saved;
  }
  {
    const tests::UserLooks large(2, false);
    saved = save("protocol_dialog_large_letters.png", &Form1::FileNewMenu_Click) && saved;
  }
  scene.Form().Protocol.SelectText(kRecorded);
  scene.Record();
  return save("protocol_dialog_recording.png", &Form1::FileNewMenu_Click) && saved;
}

/// What the main window asks and tells in boxes.
bool SaveBoxes(const QDir& folder) {
  tests::WindowScene scene;
  Form1& form = scene.Form();
  const auto save = [&](const char* file, const std::function<void()>& action) {
    return SaveBox(folder.filePath(QLatin1String(file)), action);
  };
  bool saved = save("procdelay.png", [&] { form.MenuProcDelay_Click(); });
  saved = save("about.png", [&] { form.AboutMenu_Click(); }) && saved;
  saved = save("calibration.png", [&] { form.CalibrationMenu_Click(); }) && saved;
  scene.Record();
  scene.Record();
  saved = save("command_name.png", [&] { form.SaveCmdButton_Click(); }) && saved;
  form.FileNewMenu_Click();
  saved = save("protocol_question.png", [&] { form.ProtocolDialog()->CreateButton_Click(); }) && saved;
  form.ProtocolDialog()->CancelButton_Click();

  return save("configuration_error.png", [&] { scene.LoadDamagedFile(); }) && saved;
}

/// The main window while it waits for a remote.
bool SaveWaits(const QDir& folder) {
  tests::WindowScene scene;
  bool saved = true;
  const auto saveAt = [&](int capture, const char* file) {
    scene.Line().OnListen = [&, capture, file]() mutable {
      if (--capture > 0) return;
      QCoreApplication::processEvents();
      saved = Save(scene.View(), folder.filePath(QLatin1String(file))) && saved;
      scene.Line().OnListen = nullptr;
    };
  };
  saveAt(1, "window_recording.png");
  scene.Record();
  saveAt(3, "window_calibrating.png");
  scene.Calibrate();
  return saved;
}

}  // namespace
}  // namespace keplo

/// Draws every window, dialog and box into the folder of the first argument. Style, font and colours are
/// fixed, so that the pictures change only when the views do.
int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication::setStyle(QStringLiteral("Fusion"));
  const QApplication application(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "usage: keplo_screenshots FOLDER\n");
    return 2;
  }
  QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
  QApplication::setPalette(QPalette(QColor(0xF0, 0xF0, 0xF0)));
  const QDir folder(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());

  keplo::Scene scene;
  bool saved = scene.SaveControl(folder.filePath(QStringLiteral("control.png")));
  saved = scene.SaveDialog(folder.filePath(QStringLiteral("event_dialog.png"))) && saved;
  saved = keplo::SaveWithoutReceiver(folder) && saved;
  saved = keplo::SaveWindow(folder) && saved;
  saved = keplo::SaveProtocolDialogs(folder) && saved;
  saved = keplo::SaveBoxes(folder) && saved;
  saved = keplo::SaveWaits(folder) && saved;
  QApplication::setPalette(keplo::tests::DarkPalette());
  saved = scene.SaveControl(folder.filePath(QStringLiteral("control_dark.png"))) && saved;
  saved = scene.SaveDialog(folder.filePath(QStringLiteral("event_dialog_dark.png"))) && saved;
  return saved ? 0 : 1;
}
