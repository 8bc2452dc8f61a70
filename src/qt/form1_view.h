#pragma once

#include <QScrollArea>
#include <QWidget>
#include <map>
#include <optional>
#include <string_view>

#include "qt/menu_bar_view.h"
#include "qt/model_link.h"
#include "qt/new_protocol_view.h"
#include "qt/qt_timer.h"
#include "qt/twip_scale.h"
#include "qt/wait_line.h"
#include "window/form1.h"

namespace keplo::qt {

/// The main window on screen, built from the table of its controls. Its size is fixed; with a font larger
/// than the design's a twip takes more pixels, so that everything keeps its room. On a screen with less room
/// it scrolls. The form outlives it.
class Form1View : public QWidget {
 public:
  explicit Form1View(Form1& form, QWidget* parent = nullptr);
  ~Form1View() override;

  const TwipScale& Scale() const { return scale_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  void AddControl(const ControlRow& row);
  void AddTabOrder();
  void Rescale();
  double PixelsPerTwip() const;
  void FitSize();
  /// How much of the window's inside the screen has room for.
  QSize ShownPart(const QSize& inner, int menuHeight) const;

  Form1& form_;
  MenuBarView* menuBar_;
  QScrollArea* scrolled_;
  QWidget* inside_;
  std::map<const ControlRow*, QWidget*> views_;
  TwipScale scale_;
  QtTimer timer_;
  QtTimer fileTimer_;
  ModelLink titleLink_;
  ModelLink sizeLink_;
  ModelLink hideLink_;
  NewProtocolPlace protocolDialog_;
  std::optional<WaitLine> wait_;
};

/// Brings a window up and shows it until its form takes it off the screen.
/// @return false if the form could not be loaded
bool ShowUntilHidden(Form1& form);

/// Shows the main window of a host modally until the user leaves it.
/// @param describeLine what the line is, for a person
/// @param onLineTold shows what the line tells while the window is open
/// @param parent it stands over; may be null
void ShowMainWindow(KeploMod& mod, Win32Ser& line, const std::function<std::string()>& describeLine,
                    std::function<void(const std::string&)>& onLineTold, QWidget* parent);

}  // namespace keplo::qt
