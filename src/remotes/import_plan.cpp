#include "remotes/import_plan.h"

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <string_view>

#include "config/cfg_store.h"
#include "config/cfg_text.h"
#include "config/change_value.h"
#include "config/learn.h"
#include "config/protocol_edit.h"
#include "config/protocols.h"
#include "config/raw_lookup.h"
#include "config/sections.h"
#include "config/send_as_line.h"
#include "failure.h"
#include "formats/families.h"
#include "remotes/heard_code.h"
#include "remotes/import_reasons.h"
#include "remotes/key_names.h"
#include "remotes/new_commands.h"
#include "remotes/section_signal.h"
#include "remotes/stored_codes.h"
#include "signal/raw/raw_digits.h"
#include "signal/raw/raw_index.h"
#include "signal/raw/raw_levels.h"
#include "signal/send_as.h"

namespace keplo {

namespace {

constexpr std::size_t kFewestDigits = 5;  // of a code that is sent

/// Whether a section sends a code in the way in which it was heard, whichever of two frames goes first.
bool SendsInWayOf(const ProtocolParams& section, const HeardCode& heard) {
  return WayOfAll(WayOf(heard.Digits, section.SENDAS)) == heard.Section.Params.SENDAS;
}

/// Whether a key is of a protocol that the receiver was made for. Digits of one kind may be a lamp's.
bool IsSurelyHeard(const RemoteKey& key) {
  if (!key.Coded || FamilyOf(*key.Coded, key.Carrier) == nullptr) return false;
  const std::string& digits = key.Coded->Digits;
  return digits.find(digits.front() == '0' ? '1' : '0') != std::string::npos;
}

std::vector<int> RunsOf(const PulseTrain& lengths) {
  std::vector<int> runs;
  for (const int length : lengths) runs.push_back((length + kNominalSampleTime / 2) / kNominalSampleTime);
  return runs;
}

/// A press with the silence after it, where that is described.
PulseTrain WithSilence(PulseTrain press, const std::optional<Repeat>& described) {
  if (!described || described->Gap == 0 || press.size() % 2 == 0) return press;
  const std::int64_t time =
      described->FromStart ? std::accumulate(press.begin(), press.end(), std::int64_t{0}) : 0;
  if (time < described->Gap) press.push_back(described->Gap - static_cast<int>(time));
  return press;
}

/// Puts an import together, one remote after the other.
class Planner {
 public:
  Planner(const std::string& text, const ImportWishes& wishes)
      : text_(text), wishes_(wishes), codes_(text), names_(text) {
    if (!wishes.Section.empty()) RequireSection();
    if (wishes.Raw != nullptr) raw_ = wishes.Raw->Index;
  }

  void Take(const ImportedFile& file, const Remote& remote) {
    for (const RemoteKey& key : remote.Keys) {
      if (!wishes_.Wants || wishes_.Wants(key)) Take(file, remote, key);
    }
    const std::string name =
        remote.Name.empty() ? std::filesystem::path(file.Path).stem().string() : remote.Name;
    for (const KeyGroup& group : groups_) {
      TellUnheard(group.Group.Section(), group.Keys);
      plan_.Sections.push_back(names_.Next(name));
      blocks_ += SectionBlock(plan_.Sections.back(), group, plan_.Keys);
    }
    groups_.clear();
  }

  ImportPlan Finish() {
    plan_.Text = text_;
    if (!own_.empty()) AddToSection();
    if (!blocks_.empty()) AddBlocks();
    for (const auto& [place, met] : meetings_) {
      const std::string with = met.With.New ? plan_.Keys[*met.With.New].Reference() : met.With.Reference;
      TellMeeting(met.How, with, plan_.Keys[place]);
    }
    plan_.Free = kMostCharacters - std::min(text_.size(), kMostCharacters);
    plan_.Needed = plan_.Text.size() - text_.size();
    return std::move(plan_);
  }

 private:
  void RequireSection() {
    if (const LearnResult refused = CheckProtocol(wishes_.Section); !refused.Done()) {
      throw Failure(0, RefusalText(refused));
    }
    const std::optional<ProtocolDraft> draft = LoadProtocol(text_, wishes_.Section);
    if (!draft) throw Failure(0, RefusalText({Refusal::NoSection, wishes_.Section}));
    section_ = SectionSignal{draft->ProtoKind, draft->Params};
    plan_.Sections = {wishes_.Section};
  }

  void Take(const ImportedFile& file, const Remote& remote, const RemoteKey& key) {
    const std::size_t place = plan_.Keys.size();
    plan_.Keys.push_back(
        {.File = file.Path, .Remote = remote.Name, .Key = &key, .Section = {}, .Name = {}, .Reason = {}});
    PlannedKey& planned = plan_.Keys.back();
    planned.IsRaw = key.IsRaw();
    if (!key.Coded) {
      planned.Reason = key.Skipped;
      if (planned.IsRaw) TakeRaw(key.Lengths, place);
      return;
    }
    std::optional<SectionSignal> section;
    planned.Reason = WhyNoCode(key, section);
    if (!planned.Reason.empty()) {
      planned.IsRaw = !section && !section_ && key.Coded->Digits.size() >= kFewestDigits;
      if (planned.IsRaw) TakeRaw(PressLengths(*key.Coded, 1), place);
      return;
    }
    if (IsKnownAsRaw({SentPress(section_ ? *section_ : *section, key.Coded->Digits)}, place)) return;
    if (!MayGoIn(planned, place)) return;
    planned.Fate = KeyFate::Stored;
    codes_.Add(key.Coded->Digits, place);
    if (key.Coded->Code.Line != LineCode::Biphase) TellToggle(key.Coded->Toggle, planned);
    AddReason(planned, key.Lost);
    if (section_) {
      TellOtherSending(wishes_.Section, *section_, planned);
      own_.push_back(place);
    } else {
      AddToGroup(*section, key, place);
    }
  }

  /// A command whose code the receiver reads from the lengths.
  void TakeHeard(const HeardCode& heard, std::size_t place) {
    PlannedKey& planned = plan_.Keys[place];
    planned.IsRaw = false;
    planned.HeardDigits = heard.Digits;
    planned.SendAs = heard.SendAs;
    planned.Reason.clear();
    if (section_ && !SendsInWayOf(section_->Params, heard)) {
      planned.Reason = "[" + wishes_.Section + "] has no line SENDAS= " + heard.Section.Params.SENDAS;
      return;
    }
    if (IsKnownAsRaw({SentPress(heard.Section, heard.Digits)}, place)) return;
    if (!MayGoIn(planned, place)) return;
    planned.Fate = KeyFate::Stored;
    codes_.Add(heard.Digits, place);
    AddReason(planned, planned.Key->Lost);
    if (const auto other = HeardCodeOf(planned.Key->Toggled); other && planned.Key->IsRaw()) {
      TellToggle(FirstDifference(heard.Digits, other->Digits), planned);
    }
    if (section_) return own_.push_back(place);
    const std::optional<int>& carrier = planned.Key->Carrier;
    auto group = std::find_if(groups_.begin(), groups_.end(), [&](const KeyGroup& candidate) {
      return candidate.Group.SendsAs(heard.Section, carrier);
    });
    if (group == groups_.end())
      group = groups_.insert(group, KeyGroup{SectionGroup::OfSendAs(heard.Section, carrier), {}});
    group->Group.TakeCarrier(carrier);
    group->Keys.push_back(place);
  }

  /// Whether a raw command could be taken for a signal, so that it would be heard in its place or silence it.
  bool IsKnownAsRaw(const std::vector<RawLengths>& forms, std::size_t place) {
    if (raw_.Empty()) return false;
    const RawMatch match = FindSimilarRaw(raw_, forms);
    if (!match.IsSame) return false;
    if (const auto met = codes_.Meets(std::string(match.Digits))) meetings_.emplace_back(place, *met);
    plan_.Keys[place].Fate = KeyFate::Known;
    plan_.Keys[place].Reason.clear();
    return true;
  }

  /// Whether the monitor reads the code of a command of a signal, so that it never asks the raw ones.
  bool IsReadAsCode(const std::vector<RawLengths>& forms, std::size_t place) {
    SignalState heard;
    for (const RawLengths& form : forms) {
      const MonitorReading read = MonitorReadingOf(form, heard);
      if (!read.HasCode() && read.Ended != Stage::Doubtful) continue;
      const auto met = codes_.Meets(read.Digits);
      // A code that the first analysis has read is that of the command whose code begins with it.
      using enum StoredCodes::Meeting;
      if (!met || (met->How != Equal && (met->How != BeginsOther || read.ReadBy != Analysis::First)))
        continue;
      meetings_.emplace_back(place, StoredCodes::Met{Equal, met->With});
      plan_.Keys[place].Fate = KeyFate::Known;
      plan_.Keys[place].Reason.clear();
      return true;
    }
    return false;
  }

  /// A command that keeps its lengths, in both forms if there are two.
  void TakeRaw(PulseTrain lengths, std::size_t place) {
    if (const std::optional<HeardCode> heard =
            HeardCodeOf(WithSilence(lengths, plan_.Keys[place].Key->Described)))
      return TakeHeard(*heard, place);
    PlannedKey& planned = plan_.Keys[place];
    if (!lengths.empty() && lengths.size() % 2 == 0) lengths.pop_back();
    const std::vector<int> runs = RunsOf(lengths);
    const auto levels = FindLevels({runs, false});
    if (!levels) {
      planned.Reason = "its lengths are of no two digit patterns, and no clean signal of a few lengths each";
      return;
    }
    std::vector<RawLengths> forms = {std::move(lengths)};
    if (const PulseTrain& toggled = planned.Key->Toggled; planned.Key->IsRaw() && !toggled.empty()) {
      forms.emplace_back(toggled.begin(), toggled.end() - (toggled.size() % 2 == 0 ? 1 : 0));
    }
    if (IsKnownAsRaw(forms, place) || IsReadAsCode(forms, place)) return;
    RawSignal signal{
        DrawRawDigits(levels->Levels,
                      [&](std::string_view digits) { return codes_.Meets(std::string(digits)).has_value(); }),
        std::move(forms)};
    planned.Fate = KeyFate::Stored;
    planned.Reason = planned.Key->Coded ? "no two digit patterns send it, so that it keeps its lengths" : "";
    planned.RawDigits = signal.Digits;
    codes_.Add(signal.Digits, place);
    raw_.Add(signal);
    if (!IsHeardAsRaw(raw_, signal)) AddReason(planned, kNotHeardAsRaw);
    AddReason(planned, planned.Key->Lost);
    plan_.Raw.push_back(std::move(signal));
    if (section_) {
      TellOtherSending(wishes_.Section, *section_, planned);
      own_.push_back(place);
    } else {
      AddRawToGroup(*planned.Key, place);
    }
  }

  /// Any section will do for lengths, if its carrier does.
  void AddRawToGroup(const RemoteKey& key, std::size_t place) {
    auto group = std::find_if(groups_.begin(), groups_.end(), [&](const KeyGroup& candidate) {
      return candidate.Group.HasCarrier(key.Carrier);
    });
    if (group == groups_.end()) {
      group = groups_.insert(group, KeyGroup{SectionGroup::OfLengths(key.Carrier), {}});
    }
    group->Group.TakeCarrier(key.Carrier);
    group->Keys.push_back(place);
  }

  /// Why the digits of a key make no command; empty if they do.
  /// @param section takes how they are sent
  std::string WhyNoCode(const RemoteKey& key, std::optional<SectionSignal>& section) const {
    const CodedSignal& signal = *key.Coded;
    if (signal.Digits.size() < kFewestDigits) {
      return "a code of " + std::to_string(signal.Digits.size()) + " digits is too short; expected " +
             std::to_string(kFewestDigits) + " or more";
    }
    if (section_) {
      return SendsFrame(*section_, signal) ? "" : "the patterns of [" + wishes_.Section + "] do not send it";
    }
    section = SectionOf(signal);
    return section ? "" : "no two digit patterns send it";
  }

  bool MayGoIn(PlannedKey& planned, std::size_t place) {
    const auto met = codes_.Meets(planned.Digits());
    if (!met) return true;
    meetings_.emplace_back(place, *met);
    if (met->How == StoredCodes::Meeting::Equal) {
      planned.Fate = KeyFate::Known;
      return false;
    }
    planned.Fate = KeyFate::Shadowed;
    return wishes_.Shadowed;
  }

  void AddToGroup(const SectionSignal& section, const RemoteKey& key, std::size_t place) {
    auto group = std::find_if(groups_.begin(), groups_.end(), [&](const KeyGroup& candidate) {
      return candidate.Group.Takes(*key.Coded, key.Carrier);
    });
    if (group == groups_.end()) group = groups_.insert(group, KeyGroup{SectionGroup(section), {}});
    group->Group.Add(*key.Coded, key.Carrier);
    group->Keys.push_back(place);
    if (const int silence = group->Group.LengthenedSilence(*key.Coded); silence > 0) {
      AddReason(plan_.Keys[place], "its repeats follow after " + std::to_string(silence) +
                                       " us, since no section has the file's " +
                                       std::to_string(SilenceAfter(*key.Coded)));
    }
    if (group->Group.LosesShortRepeat(*key.Coded))
      AddReason(plan_.Keys[place], "its short repeat is of lengths that no section has, and is not kept");
  }

  /// The receiver was made for the common protocols; it knows lengths of others where they are like those.
  void TellUnheard(const SectionSignal& section, const std::vector<std::size_t>& places) {
    for (const std::size_t place : places) {
      PlannedKey& planned = plan_.Keys[place];
      if (planned.IsRaw || IsSurelyHeard(*planned.Key) || IsHeard(section, planned.Digits())) continue;
      AddReason(planned, "it can be sent; to have it heard as well, learn it from the remote");
    }
  }

  void AddToSection() {
    const std::optional<Section> section = FindSectionToChange(text_, wishes_.Section);
    const std::string_view words =
        std::string_view(text_).substr(static_cast<std::size_t>(section->Begin - 1),
                                       static_cast<std::size_t>(section->End - section->Begin));
    TellUnheard(*section_, own_);
    const std::string lines = CommandLines(wishes_.Section, words, own_, plan_.Keys);
    plan_.Text = WithCommandLines(text_, wishes_.Section, lines).value_or(text_);
    for (const std::size_t place : own_) {
      const PlannedKey& key = plan_.Keys[place];
      if (key.SendAs.empty()) continue;
      plan_.Text = WithSendAs(plan_.Text, wishes_.Section, "G" + key.HeardDigits, key.SendAs);
    }
  }

  /// The new sections go before [Template]; the window goes on to start with the protocol that it had.
  void AddBlocks() {
    const SectionChange place = NewSection(plan_.Text, {});
    if (!place.Refused.Done()) throw Failure(0, RefusalText(place.Refused));
    const std::vector<std::string> before = ListProtocols(text_);
    plan_.Text = InsertText(plan_.Text, blocks_, place.Change.First);
    const int position = FindNoCase("PROTOCOL=", text_, FindNoCase("[General]", text_, 1));
    const bool startsWithTemplate =
        !before.empty() && GetLineAt(text_, position) == std::to_string(before.size() - 1);
    if (!startsWithTemplate) return;
    plan_.Text = WithCurrentProtocol(plan_.Text, static_cast<int>(before.size() + plan_.Sections.size()) - 1);
  }

  const std::string& text_;
  const ImportWishes& wishes_;
  StoredCodes codes_;
  SectionNames names_;
  std::optional<SectionSignal> section_;  // the existing one, if one is to take the keys
  ImportPlan plan_;
  RawIndex raw_;                  // of the store and of what is new
  std::vector<KeyGroup> groups_;  // of the remote at hand
  std::vector<std::size_t> own_;  // keys that go into the existing section
  std::string blocks_;
  std::vector<std::pair<std::size_t, StoredCodes::Met>> meetings_;
};

}  // namespace

std::size_t ImportPlan::Count(KeyFate fate) const {
  return static_cast<std::size_t>(
      std::count_if(Keys.begin(), Keys.end(), [&](const PlannedKey& key) { return key.Fate == fate; }));
}

bool ImportPlan::NeedsSecondLook() const {
  return std::any_of(Keys.begin(), Keys.end(), [](const PlannedKey& key) {
    return key.Fate == KeyFate::Stored && (key.IsRaw || !key.HeardDigits.empty());
  });
}

ImportPlan PlanImport(const std::string& text, const std::vector<ImportedFile>& files,
                      const ImportWishes& wishes) {
  Planner planner(text, wishes);
  for (const ImportedFile& file : files) {
    for (const Remote& remote : file.Remotes) planner.Take(file, remote);
  }
  return planner.Finish();
}

void StoreImport(CfgStore& store, ImportPlan plan) {
  for (RawSignal& signal : plan.Raw) store.Raw.Known.insert_or_assign(signal.Digits, std::move(signal));
  ReplaceAndSave(store, std::move(plan.Text));
}

}  // namespace keplo
