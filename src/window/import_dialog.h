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

/// The dialog that lists the keys of some files, and in which the user ticks those to import.
class ImportDialog : public ui::Window {
 public:
  struct Row {
    std::string Key;      // as the file has it
    std::string Command;  // that it becomes, or that has its code
    std::string Code;     // with its leading G
    std::string Fate;     // what becomes of it, for a person
    bool MayTick = false;
    bool Ticked = false;
  };
  static constexpr std::array<std::string_view, 4> kHeadings = {"Key", "Command", "Code",
                                                                "What becomes of it"};

  /// @param store that outlives the dialog
  ImportDialog(const CfgStore& store, std::vector<ImportedFile> files);
  ImportDialog(const ImportDialog&) = delete;
  ImportDialog& operator=(const ImportDialog&) = delete;

  const std::vector<Row>& Rows() const { return rows_; }
  void Tick(std::size_t row, bool ticked);
  /// Runs after a change of the rows; a view redraws there.
  std::function<void()> OnRowsChanged;

  void ImportButton_Click();
  void CancelButton_Click() { Hide(); }
  void AllButton_Click() { TickAll(true); }
  void NoneButton_Click() { TickAll(false); }

  /// Whether the user has left the dialog by Import.
  bool Agreed() const { return agreed_; }
  /// The import of the ticked keys, for a text that may have changed meanwhile.
  ImportPlan PlanFor(const std::string& text) const;

  ui::Label Summary;  // how many keys, and the room that they need
  ui::Button AllButton, NoneButton, ImportButton, CancelButton;

 private:
  void TickAll(bool ticked);
  void Show();

  const std::string text_;
  const RawStore& raw_;
  const std::vector<ImportedFile> files_;
  std::vector<const RemoteKey*> keys_;  // of the rows
  std::vector<std::string> fates_;      // of the rows that are not ticked
  std::vector<Row> rows_;
  bool agreed_ = false;
  bool isFirst_ = false;  // the first analysis reads what is heard
};

}  // namespace keplo
