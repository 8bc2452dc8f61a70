#include "window/import_dialog.h"

#include <algorithm>
#include <set>

#include "config/read_settings.h"

namespace keplo {

namespace {

constexpr std::string_view kLeftOut = "left out";

std::string OutcomeText(const PlannedKey& key) {
  if (!key.Reason.empty()) return key.Reason;
  return key.Fate == KeyFate::Stored ? "a new command" : "";
}

}  // namespace

ImportDialog::ImportDialog(const CfgStore& store, std::vector<ImportedFile> files)
    : text_(store.CfgText), raw_(store.Raw), files_(std::move(files)) {
  SetTitle("Import");
  Settings settings;
  ReadSettings(store, settings);
  usesFirstAnalysis_ = settings.Analysis == Analysis::First;
  AllButton.OnClick = [this] { AllButton_Click(); };
  NoneButton.OnClick = [this] { NoneButton_Click(); };
  ImportButton.OnClick = [this] { ImportButton_Click(); };
  CancelButton.OnClick = [this] { CancelButton_Click(); };
  for (const PlannedKey& key :
       PlanImport(text_, files_, {.Section = {}, .Shadowed = false, .Raw = &raw_, .Wants = {}}).Keys) {
    const bool isNew = key.Fate == KeyFate::Stored;
    keys_.push_back(key.Key);
    fates_.push_back(isNew ? std::string(kLeftOut) : OutcomeText(key));
    rows_.push_back({.Key = key.Key->Name.value_or(""),
                     .Command = key.Reference(),
                     .Code = key.IsRaw              ? "raw"
                             : key.Digits().empty() ? ""
                                                    : "G" + key.Digits(),
                     .Fate = {},
                     .CanTick = isNew || key.Fate == KeyFate::Shadowed,
                     .Ticked = isNew});
  }
  Show();
}

ImportPlan ImportDialog::PlanFor(const std::string& text) const {
  std::set<const RemoteKey*> ticked;
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (rows_[row].Ticked) ticked.insert(keys_[row]);
  }
  // A shadowed key is only imported if it is ticked.
  return PlanImport(text, files_,
                    {.Section = {}, .Shadowed = true, .Raw = &raw_, .Wants = [&](const RemoteKey& key) {
                       return ticked.count(&key) > 0;
                     }});
}

void ImportDialog::Tick(std::size_t row, bool ticked) {
  if (!rows_[row].CanTick || rows_[row].Ticked == ticked) return;
  rows_[row].Ticked = ticked;
  Show();
}

void ImportDialog::TickAll(bool ticked) {
  for (Row& row : rows_) row.Ticked = ticked && row.CanTick;
  Show();
}

void ImportDialog::Show() {
  const ImportPlan plan = PlanFor(text_);
  auto planned = plan.Keys.begin();
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    rows_[row].Fate = fates_[row];
    if (!rows_[row].Ticked) continue;
    rows_[row].Command = planned->Reference();
    rows_[row].Fate = OutcomeText(*planned++);
  }
  const std::size_t stored = plan.Count(KeyFate::Stored);
  Summary.SetText(
      std::to_string(stored) + " of " + std::to_string(rows_.size()) + " keys; they need " +
      std::to_string(plan.Needed) + " characters, and " + std::to_string(plan.Free) + " are free." +
      (plan.Fits() ? "" : " Take fewer of them.") +
      (usesFirstAnalysis_ && plan.NeedsSecondLook() ? " Some are heard with ANALYSIS= 1 alone." : ""));
  ImportButton.SetEnabled(stored > 0 && plan.Fits());
  if (OnRowsChanged) OnRowsChanged();
}

void ImportDialog::ImportButton_Click() {
  accepted_ = true;
  Hide();
}

}  // namespace keplo
