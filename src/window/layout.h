#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "ui/button.h"
#include "ui/check_box.h"
#include "ui/colour.h"
#include "ui/control.h"
#include "ui/drop_down_list.h"
#include "ui/label.h"
#include "ui/menu_entry.h"
#include "ui/scroll_bar.h"
#include "ui/text_box.h"

namespace keplo {

class Form1;

/// How a control is shown. Boxed labels have a thin border; centred ones also centre their text. Scroll bars
/// are horizontal.
enum class ControlKind {
  Label,
  BoxedLabel,
  CentredLabel,
  TextBox,
  Button,
  CheckBox,
  DropDownList,
  ScrollBar,
  Frame,
  Line
};

/// In twips, 15 per design pixel.
struct Place {
  int Left = 0, Top = 0, Width = 0, Height = 0;
  bool operator==(const Place&) const = default;
};

struct Size {
  int Width = 0, Height = 0;
  bool operator==(const Size&) const = default;
};

inline constexpr int kTwipsPerPixel = 15;
inline constexpr Size kFullOuter{8385, 4875};   // twips
inline constexpr Size kFullInner{8295, 4215};   // twips
inline constexpr Size kSmallOuter{3315, 1740};  // twips
/// The part of the outer size that is border, title bar and menu bar, twips.
inline constexpr Size kWindowEdges{kFullOuter.Width - kFullInner.Width,
                                   kFullOuter.Height - kFullInner.Height};

/// Window-system colours for the background of controls whose model has no back colour.
enum class SystemColour { Usual, ScrollBar, Menu, ButtonFace };

/// The control of a row: `form.*member`. A plain Control has no contents.
using ControlMember =
    std::variant<ui::Control Form1::*, ui::Label Form1::*, ui::TextBox Form1::*, ui::Button Form1::*,
                 ui::CheckBox Form1::*, ui::DropDownList Form1::*, ui::ScrollBar Form1::*>;

struct Font {
  std::string_view Family;
  double Points = 0;
};

inline constexpr int kNoTabStop = -1;

/// A control of the window. Captions and tips are shown literally; a view may add an access key to a label.
struct ControlRow {
  std::string_view Name;
  ControlMember Model;
  ControlKind Kind;
  Place Bounds;                   // relative to its frame, if it has one, otherwise to the window
  std::string_view Caption = {};  // of labels, buttons and check boxes
  std::string_view Tip = {};
  int TabIndex = kNoTabStop;            // from 0
  std::string_view LabelFor = {};       // the control that this label describes
  std::string_view Frame = {};          // the frame that contains it
  std::optional<ui::Colour> Back = {};  // initial back colour of the model
  SystemColour System = SystemColour::Usual;
  std::optional<keplo::Font> Font = {};
};

/// The controls from top to bottom; a frame comes before its contents.
std::span<const ControlRow> Controls();
/// @return null if there is no such control
const ControlRow* FindControl(std::string_view name);

/// The model of a row, as the common base of all controls.
ui::Control& ModelOf(Form1& form, const ControlRow& row);

/// A menu entry; without a model it is a separator. An ampersand marks the access key.
struct MenuRow {
  std::string_view Name;
  std::string_view Caption = {};
  ui::MenuEntry Form1::*Model = nullptr;
  std::string_view Shortcut = {};  // such as "Ctrl+X"
  bool Checked = false;            // initially
};

struct MenuColumn {
  std::string_view Name;
  std::string_view Caption;
  std::span<const MenuRow> Entries;
};

/// The menu bar, from left to right.
std::span<const MenuColumn> Menus();

}  // namespace keplo
