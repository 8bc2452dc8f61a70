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

/// How a control is shown. Boxed labels have a thin single border, centred ones are boxed too and show their
/// text in the middle; scroll bars are horizontal.
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

/// Twips, 15 to a pixel of the design.
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
/// What the window's border, title bar and menu bar take of the outer size, twips.
inline constexpr Size kWindowEdges{kFullOuter.Width - kFullInner.Width,
                                   kFullOuter.Height - kFullInner.Height};

/// Colours that are the window system's own: the back of a control without a back colour in its model.
enum class SystemColour { Usual, ScrollBar, Menu, ButtonFace };

/// The control of a row in a window: `form.*member`. A plain Control has nothing but a place.
using ControlMember =
    std::variant<ui::Control Form1::*, ui::Label Form1::*, ui::TextBox Form1::*, ui::Button Form1::*,
                 ui::CheckBox Form1::*, ui::DropDownList Form1::*, ui::ScrollBar Form1::*>;

struct Font {
  std::string_view Family;
  double Points = 0;
};

inline constexpr int kNoTabStop = -1;

/// One control of the window. Captions and tips are shown as they stand; a view may mark a letter of a label
/// as the key that reaches its field.
struct ControlRow {
  std::string_view Name;
  ControlMember Model;
  ControlKind Kind;
  Place Bounds;                   // inside the frame it stands in, else inside the window
  std::string_view Caption = {};  // of labels, buttons and check boxes; the model has no other
  std::string_view Tip = {};
  int TabIndex = kNoTabStop;            // from 0
  std::string_view LabelFor = {};       // the control that this label stands before
  std::string_view Frame = {};          // the frame it stands in
  std::optional<ui::Colour> Back = {};  // of the model at the start
  SystemColour System = SystemColour::Usual;
  std::optional<keplo::Font> Font = {};
};

/// The controls, from top to bottom of the window; a frame stands before what is in it.
std::span<const ControlRow> Controls();
/// @return null for a name that no control has
const ControlRow* FindControl(std::string_view name);

/// What all kinds of controls share: the model of a row in a window.
ui::Control& ModelOf(Form1& form, const ControlRow& row);

/// One entry of a menu; a row without a model is a separator. An ampersand marks the access key.
struct MenuRow {
  std::string_view Name;
  std::string_view Caption = {};
  ui::MenuEntry Form1::*Model = nullptr;
  std::string_view Shortcut = {};  // such as "Ctrl+X"
  bool Checked = false;            // at the start
};

struct MenuColumn {
  std::string_view Name;
  std::string_view Caption;
  std::span<const MenuRow> Entries;
};

/// The menu bar, from left to right.
std::span<const MenuColumn> Menus();

}  // namespace keplo
