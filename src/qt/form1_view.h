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

/// The view of the main window, built from the table of its controls. Its size is fixed, but grows with the
/// font, so that everything fits. On a screen that is too small it scrolls. The form must outlive it.
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
  void BringIntoSight(QWidget& view);
  void Rescale();
  double PixelsPerTwip() const;
  void FitSize();
  /// The size of the part of the window's inside that fits on the screen.
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
  ProtocolDialogHost protocolDialog_;
  std::optional<WaitLine> wait_;
};

/// Shows a window until its form hides it.
/// @return false if the form could not be loaded
bool ShowUntilHidden(Form1& form);

/// Shows the main window modally for a host, until the user closes it.
/// @param describeLine describes the line in a sentence for the user
/// @param onLineMessage set to a function that shows messages of the line while the window is open
/// @param parent the window below it; may be null
void ShowMainWindow(KeploMod& mod, Win32Ser& line, const std::function<std::string()>& describeLine,
                    std::function<void(const std::string&)>& onLineMessage, QWidget* parent);

}  // namespace keplo::qt
