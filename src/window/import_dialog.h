#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "remotes/import_plan.h"
#include "ui/button.h"
#include "ui/label.h"
#include "ui/window.h"

namespace keplo {

/// The dialog in which the user selects the keys to import from some files.
class ImportDialog : public ui::Window {
 public:
  struct Row {
    std::string Key;      // its name in the file
    std::string Command;  // the command to be created, or the one that already has the code
    std::string Code;     // with its leading G
    std::string Fate;     // what will happen to it, for the user
    bool CanTick = false;
    bool Ticked = false;
  };
  static constexpr std::array<std::string_view, 4> kHeadings = {"Key", "Command", "Code",
                                                                "What becomes of it"};

  /// @param store must outlive the dialog
  ImportDialog(const CfgStore& store, std::vector<ImportedFile> files);
  ImportDialog(const ImportDialog&) = delete;
  ImportDialog& operator=(const ImportDialog&) = delete;

  const std::vector<Row>& Rows() const { return rows_; }
  void Tick(std::size_t row, bool ticked);
  /// Runs after a change of the rows.
  std::function<void()> OnRowsChanged;

  void ImportButton_Click();
  void CancelButton_Click() { Hide(); }
  void AllButton_Click() { TickAll(true); }
  void NoneButton_Click() { TickAll(false); }

  /// Whether the user has closed the dialog with Import.
  bool Accepted() const { return accepted_; }
  /// Plans the import of the ticked keys into a text, which may have changed since the dialog was opened.
  ImportPlan PlanFor(const std::string& text) const;

  ui::Label Summary;  // how many keys, and the space that they need
  ui::Button AllButton, NoneButton, ImportButton, CancelButton;

 private:
  void TickAll(bool ticked);
  void Show();

  const std::string text_;
  const RawStore& raw_;
  const std::vector<ImportedFile> files_;
  std::vector<const RemoteKey*> keys_;  // of the rows
  std::vector<std::string> fates_;      // of the rows while they are not ticked
  std::vector<Row> rows_;
  bool accepted_ = false;
  bool usesFirstAnalysis_ = false;
};

}  // namespace keplo
