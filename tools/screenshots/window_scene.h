#pragma once

#include <QPushButton>
#include <QWidget>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "config/config_builder.h"
#include "disk/posix_file_system.h"
#include "doubles/fake_line.h"
#include "doubles/temp_folder.h"
#include "keplo_mod.h"
#include "qt/form1_view.h"
#include "qt/qt_boxes.h"
#include "signal/signal_builder.h"

namespace keplo::tests {

/// A line that lets a picture be taken while it listens.
class WatchedLine : public FakeLine {
 public:
  std::function<void()> OnListen;

  std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override {
    if (OnListen) OnListen();
    return FakeLine::IRRecord(buffer, delay, limit);
  }
};

/// Boxes that come up unless they are told to agree to everything.
class SceneBoxes : public qt::QtBoxes {
 public:
  bool Agrees = false;

  void Message(std::string_view text, std::string_view title) override {
    if (!Agrees) QtBoxes::Message(text, title);
  }
  void Explain(std::string_view text, std::string_view title, std::string_view reason) override {
    if (!Agrees) QtBoxes::Explain(text, title, reason);
  }
  bool Confirm(std::string_view text, std::string_view title) override {
    return Agrees || QtBoxes::Confirm(text, title);
  }
};

/// The main window with a remote that its configuration does not know.
class WindowScene {
 public:
  explicit WindowScene(bool hasPorts = true) {
    folder_.Write("keplo.cfg", Config(Protocol("Television", {"G10,POWER", "G11,MUTE"})));
    line_.Opens = [hasPorts](std::int32_t /*port*/) { return hasPorts; };
    boxes_.Agrees = true;
    form_.Form_Load();
    boxes_.Agrees = false;
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
  Form1& Form() { return form_; }
  WatchedLine& Line() { return line_; }
  void Click(const char* button) {
    view_->findChild<QPushButton*>(QLatin1String(button))->click();
    QCoreApplication::processEvents();
  }
  /// Calibrates with a key that is held while a delay too short, two good ones and one too long are tried.
  void Calibrate() {
    for (const int base : {11, 10, 10, 9}) {
      std::vector<int> runs;
      for (int pair = 0; pair < 24; ++pair) runs.insert(runs.end(), 2, base + pair % 2);
      line_.Captures.push_back(Padded(Bytes(Runs(runs)), 100));
    }
    boxes_.Agrees = true;
    form_.CalibrationMenu_Click();
    boxes_.Agrees = false;
  }
  /// Starts on a file that cannot be used. Its folder is told by its place in the current one, since pictures
  /// of two runs are to be the same.
  void LoadDamagedFile() {
    std::filesystem::create_directory(folder_.Path() / "keplo");
    folder_.Write("keplo/keplo.cfg", "[General]\r\n");
    std::filesystem::current_path(folder_.Path());
    KeploMod mod("keplo", files_);
    Form1(mod, line_, boxes_).Form_Load();
  }
  void Record() {
    line_.Captures.push_back(Bytes(Runs(NecRuns("00000000111111110110100010010111"))));
    Click("RecButton");
  }

 private:
  TempFolder folder_;
  PosixFileSystem files_;
  WatchedLine line_;
  SceneBoxes boxes_;
  KeploMod mod_{folder_.Path(), files_};
  Form1 form_{mod_, line_, boxes_};
  std::unique_ptr<qt::Form1View> view_;
};

}  // namespace keplo::tests
