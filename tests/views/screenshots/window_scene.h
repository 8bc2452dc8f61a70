#pragma once

#include <QPushButton>
#include <QWidget>
#include <memory>
#include <string>

#include "config/config_builder.h"
#include "config/posix_file_system.h"
#include "doubles/fake_line.h"
#include "doubles/temp_folder.h"
#include "qt/form1_view.h"
#include "qt/qt_boxes.h"
#include "signal/signal_builder.h"

namespace keplo::tests {

/// The main window with a remote that its configuration does not know.
class WindowScene {
 public:
  WindowScene() {
    folder_.Write("keplo.cfg", Config(Protocol("Television", {"G10,POWER", "G11,MUTE"})));
    form_.Form_Load();
    Redraw();
  }

  /// Takes over the font and colours that are set now.
  void Redraw() {
    view_.reset();
    view_ = std::make_unique<qt::Form1View>(form_);
    view_->show();
    QCoreApplication::processEvents();
  }

  QWidget& View() { return *view_; }
  void Click(const char* button) {
    view_->findChild<QPushButton*>(QLatin1String(button))->click();
    QCoreApplication::processEvents();
  }
  void Record() {
    line_.Captures.push_back(Bytes(Runs(NecRuns("00000000111111110110100010010111"))));
    Click("RecButton");
  }

 private:
  TempFolder folder_;
  PosixFileSystem files_;
  FakeLine line_;
  qt::QtBoxes boxes_;
  KeploMod mod_{folder_.Path(), files_};
  Form1 form_{mod_, line_, boxes_};
  std::unique_ptr<qt::Form1View> view_;
};

}  // namespace keplo::tests
