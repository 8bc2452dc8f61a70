#include "config/protocol_edit.h"

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

#include "config/commands.h"
#include "config/generic_protocols.h"
#include "config/lookup.h"
#include "config/names.h"
#include "config/numbers.h"
#include "config/protocols.h"
#include "config/sections.h"
#include "config/values.h"

namespace keplo {

namespace {

constexpr std::size_t kShortestName = 3, kLongestName = 12;
constexpr int kShortestSilence = 16;  // slots; what is shorter counts as a part of the frame

constexpr std::array<std::string_view, 23> kRefusalTexts = {
    "",
    "The Template protocol cannot be edited",
    "The Template protocol cannot be deleted",
    "Recorded is a virtual protocol used to test new commands before save.",
    "Protocol name must contain only: a-z,A-Z,0-9,'-','_'",
    "The new protocol name is in use",
    "Protocol name must have 3-12 characters",
    "SENDPLS must have an integer value greater than 0",
    "REPEAT must have an integer value greater than 16 (or 0)",
    "GREPEAT must have an integer value greater than 16 (or 0 or 1)",
    "BITx must not be empty, if no BITG, then BITG=0",
    "Description cannot contain \",\" character!",
    "Description cannot contain \"[\" character!",
    "Description cannot contain \"GPROTO=\"!",
    "Description must be a single line",
    "BITG must have a binary value",
    "BIT0 must have a binary value",
    "BIT1 must have a binary value",
    "The configuration has no whole section of this protocol.",
    "The configuration has no section [Template] that a new protocol could stand ahead of.",
    "A line of the configuration does not end in CR LF. Give all its lines these ends, as unix2dos does, and "
    "try again.",
    "The header line of the section is not plain. Leave only the name and its brackets in it, and try again.",
    "Another section of this name stands ahead of [General]. Take it out, and try again."};

/// Where the search for a section begins: what stands ahead of [General] is none, even if it looks so.
int StartOfSections(std::string_view text) { return std::max(FindNoCase("[General]", text, 1), 1); }

std::optional<Section> FindClosed(std::string_view text, std::string_view protocol) {
  std::optional<Section> section = FindSection(text, protocol, StartOfSections(text));
  if (section && (!section->Closed || IsGeneral(protocol))) section.reset();
  return section;
}

/// As FindClosed, for a change: it must be the section that is read, too.
ProtocolRefusal FindToChange(std::string_view text, std::string_view protocol, Section& section) {
  const std::optional<Section> found = FindClosed(text, protocol);
  if (!found) return ProtocolRefusal::NoSection;
  section = *found;
  return FindSection(text, protocol)->Begin == section.Begin ? ProtocolRefusal::None
                                                             : ProtocolRefusal::SectionTwice;
}

/// Walks the keys of one section, each searched from behind the one before it.
class SectionKeys {
 public:
  SectionKeys(std::string_view text, const Section& section)
      : text_(text.substr(0, static_cast<std::size_t>(section.End - 1))), position_(section.Begin) {}

  /// The rest of the line behind a key; empty, for all further keys too, if it is missing.
  std::string Take(std::string_view key) {
    position_ = FindNoCase(key, text_, position_);
    return std::string(GetLineAt(text_, position_));
  }
  /// The same up to the very next CR, so that the line below never comes along.
  std::string TakeLine(std::string_view key) {
    position_ = FindNoCase(key, text_, position_);
    const bool isEmpty = SeekForward(text_, position_, '\r') == position_;
    return isEmpty ? std::string() : std::string(GetLineAt(text_, position_));
  }
  std::int16_t TakeNumber(std::string_view key) { return WithoutFraction<std::int16_t>(Take(key)); }

  /// Just behind the key taken last; 0 if one was missing.
  int Position() const { return position_; }

 private:
  std::string_view text_;
  int position_;
};

/// The number of a text that holds nothing else.
std::optional<std::int16_t> WholeNumber(std::string_view value) {
  std::string_view digits = value;
  if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) digits.remove_prefix(1);
  const bool isNumber = !digits.empty() && digits.front() != '.' &&
                        digits.find_first_not_of("0123456789.") == std::string_view::npos &&
                        std::count(digits.begin(), digits.end(), '.') <= 1;
  const std::int64_t number = NumberRounded(value);
  if (!isNumber || number != Saturated<std::int16_t>(number)) return std::nullopt;
  return static_cast<std::int16_t>(number);
}

struct ReadSection {
  ProtocolDraft Draft;
  int BehindLastKey = 0;  // the value of GREPEAT= begins here
};

std::optional<ReadSection> Read(std::string_view text, std::string_view protocol) {
  const std::optional<Section> section = FindClosed(text, protocol);
  if (!section) return std::nullopt;
  SectionKeys keys(text, *section);
  ReadSection read;
  read.Draft.Name = protocol;
  read.Draft.Description = keys.TakeLine("#");
  read.Draft.ProtoKind = keys.TakeNumber("GPROTO=");
  ProtocolParams& params = read.Draft.Params;
  params.SENDPLS = keys.TakeNumber("SENDPLS=");
  params.REPEAT = keys.TakeNumber("REPEAT=");
  params.BITG = keys.Take("BITG=");
  params.BIT0 = keys.Take("BIT0=");
  params.BIT1 = keys.Take("BIT1=");
  const std::optional<std::int16_t> gRepeat = WholeNumber(keys.Take("GREPEAT="));
  read.BehindLastKey = keys.Position();
  if (read.BehindLastKey == kNowhere || !gRepeat || !IsGenericProtocol(read.Draft.ProtoKind)) {
    return std::nullopt;
  }
  params.GREPEAT = *gRepeat;
  return read;
}

bool IsTemplate(std::string_view protocol) { return EqualNoCase(protocol, "template"); }
bool IsRecorded(std::string_view protocol) { return EqualNoCase(protocol, "recorded"); }

bool IsTaken(std::string_view text, std::string_view name) {
  if (IsGeneral(name) || IsRecorded(name) || EqualNoCase(name, "end")) return true;
  const std::vector<std::string> names = ListProtocols(text);
  return std::any_of(names.begin(), names.end(),
                     [&](const std::string& taken) { return EqualNoCase(taken, name); }) ||
         FindSection(text, name).has_value();
}

bool IsBinary(std::string_view pattern) { return pattern.find_first_not_of("01") == std::string_view::npos; }

ProtocolRefusal CheckNumbers(const ProtocolParams& params) {
  if (params.SENDPLS < 1) return ProtocolRefusal::SendPls;
  if (params.REPEAT < kShortestSilence && params.REPEAT != 0) return ProtocolRefusal::Repeat;
  if (params.GREPEAT < kShortestSilence && params.GREPEAT > 1) return ProtocolRefusal::GRepeat;
  return ProtocolRefusal::None;
}

ProtocolRefusal CheckDescription(std::string_view description) {
  if (description.find(',') != std::string_view::npos) return ProtocolRefusal::CommaInDescription;
  if (description.find('[') != std::string_view::npos) return ProtocolRefusal::BracketInDescription;
  if (description.find_first_of("\r\n") != std::string_view::npos) return ProtocolRefusal::LineInDescription;
  return FindNoCase("GPROTO=", description, 1) == kNowhere ? ProtocolRefusal::None
                                                           : ProtocolRefusal::KeyInDescription;
}

/// Why a block cannot go in ahead of a line end, with a header in the line behind it.
ProtocolRefusal CheckHeaderBehind(std::string_view text, int lineEnd, int header) {
  const std::string_view between =
      text.substr(static_cast<std::size_t>(lineEnd), static_cast<std::size_t>(header - lineEnd - 1));
  if (between.empty() || between.front() != '\n' || between.find('\n', 1) != std::string_view::npos) {
    return ProtocolRefusal::LineEnds;
  }
  return Trimmed(between.substr(1)).empty() ? ProtocolRefusal::None : ProtocolRefusal::HeaderLine;
}

}  // namespace

std::string_view RefusalText(ProtocolRefusal refusal) {
  return kRefusalTexts.at(static_cast<std::size_t>(refusal));
}

ProtocolRefusal CheckProtocolEdit(std::string_view protocol) {
  if (IsTemplate(protocol)) return ProtocolRefusal::EditOfTemplate;
  return IsRecorded(protocol) ? ProtocolRefusal::VirtualProtocol : ProtocolRefusal::None;
}

ProtocolRefusal CheckProtocolDelete(std::string_view protocol) {
  if (IsTemplate(protocol)) return ProtocolRefusal::DeleteOfTemplate;
  return IsRecorded(protocol) ? ProtocolRefusal::VirtualProtocol : ProtocolRefusal::None;
}

ProtocolRefusal CheckProtocolName(std::string_view text, const std::string& name) {
  std::string tested = name;
  if (!IsValidName(tested)) return ProtocolRefusal::InvalidName;
  if (IsTaken(text, name)) return ProtocolRefusal::NameInUse;
  if (name.size() < kShortestName || name.size() > kLongestName) return ProtocolRefusal::NameLength;
  return ProtocolRefusal::None;
}

ProtocolRefusal CheckProtocolDraft(ProtocolDraft& draft) {
  ProtocolParams& params = draft.Params;
  ProtocolRefusal refusal = CheckNumbers(params);
  if (refusal != ProtocolRefusal::None) return refusal;
  if (params.REPEAT > kShortestSilence && params.GREPEAT > kShortestSilence) params.GREPEAT = params.REPEAT;
  if (params.BIT1.empty() || params.BIT0.empty() || params.BITG.empty()) return ProtocolRefusal::EmptyPattern;
  refusal = CheckDescription(draft.Description);
  if (refusal != ProtocolRefusal::None) return refusal;
  if (!IsBinary(params.BITG)) return ProtocolRefusal::BitG;
  if (!IsBinary(params.BIT0)) return ProtocolRefusal::Bit0;
  return IsBinary(params.BIT1) ? ProtocolRefusal::None : ProtocolRefusal::Bit1;
}

std::optional<ProtocolDraft> LoadProtocol(std::string_view text, std::string_view protocol) {
  std::optional<ReadSection> read = Read(text, protocol);
  if (!read) return std::nullopt;
  return std::move(read->Draft);
}

std::string KeyNumber(int number) { return (number < 0 ? "" : " ") + std::to_string(number); }

std::string Splice::In(std::string_view text) const {
  return InsertText(RemoveText(text, First, Last), Block, First);
}

std::string ParameterLines(const ProtocolDraft& draft) {
  const ProtocolParams& params = draft.Params;
  return "# " + draft.Description + "\r\nGPROTO=" + KeyNumber(draft.ProtoKind) +
         "\r\nSENDPLS=" + KeyNumber(params.SENDPLS) + "\r\nREPEAT=" + KeyNumber(params.REPEAT) +
         "\r\nBITG= " + params.BITG + "\r\nBIT0= " + params.BIT0 + "\r\nBIT1= " + params.BIT1 +
         "\r\nGREPEAT=" + KeyNumber(params.GREPEAT);
}

SectionChange NewSection(std::string_view text, const ProtocolDraft& draft) {
  const std::optional<Section> next = FindSection(text, "Template", StartOfSections(text));
  const int header = next ? SeekBack(text, next->Begin - 1, '[') : kNowhere;
  const int place = SeekBack(text, header, '\r');
  if (place == kNowhere) return ProtocolRefusal::NoTemplate;
  const ProtocolRefusal refusal = CheckHeaderBehind(text, place, header);
  if (refusal != ProtocolRefusal::None) return refusal;
  return Splice{place, place - 1,
                "\r\n[" + draft.Name + "]\r\n" + ParameterLines(draft) + "\r\n\r\n" +
                    std::string(kPlaceholderLine) + "\r\n"};
}

SectionChange EditedSection(std::string_view text, const ProtocolDraft& draft) {
  Section section;
  const ProtocolRefusal refusal = FindToChange(text, draft.Name, section);
  if (refusal != ProtocolRefusal::None) return refusal;
  const int headerEnd = SeekForward(text, section.Begin, '\n');
  if (headerEnd == kNowhere || SeekForward(text, section.Begin, '\r') != headerEnd - 1) {
    return ProtocolRefusal::LineEnds;
  }
  const std::optional<ReadSection> read = Read(text, draft.Name);
  const int lastEnd = read ? SeekForward(text, read->BehindLastKey, '\r') : kNowhere;
  if (lastEnd == kNowhere || lastEnd > section.End) return ProtocolRefusal::NoSection;
  if (lastEnd <= headerEnd) return ProtocolRefusal::HeaderLine;
  return Splice{headerEnd + 1, lastEnd - 1, ParameterLines(draft)};
}

SectionChange WithoutSection(std::string_view text, std::string_view protocol) {
  Section section;
  const ProtocolRefusal refusal = FindToChange(text, protocol, section);
  if (refusal != ProtocolRefusal::None) return refusal;
  const int first = SeekBack(text, section.Begin - 1, '['), last = SeekBack(text, section.End, '\n');
  if (last < first) return ProtocolRefusal::HeaderLine;
  return Splice{first, last, {}};
}

int ProtocolIndexOf(std::string_view text, std::string_view protocol) {
  const std::vector<std::string> names = ListProtocols(text);
  return static_cast<int>(std::find(names.begin(), names.end(), protocol) - names.begin());
}

std::string WithCurrentProtocol(const std::string& text, int index) {
  return WithGeneralValue(text, "PROTOCOL", std::to_string(index)).value_or(text);
}

ProtocolRefusal AddProtocol(CfgStore& store, ProtocolDraft draft) {
  ProtocolRefusal refusal = CheckProtocolName(store.CfgText, draft.Name);
  if (refusal == ProtocolRefusal::None) refusal = CheckProtocolDraft(draft);
  if (refusal != ProtocolRefusal::None) return refusal;
  const SectionChange planned = NewSection(store.CfgText, draft);
  if (planned.Refused != ProtocolRefusal::None) return planned.Refused;
  const std::string text = planned.Change.In(store.CfgText);
  ReplaceAndSave(store, WithCurrentProtocol(text, ProtocolIndexOf(text, draft.Name)));
  return ProtocolRefusal::None;
}

ProtocolRefusal EditProtocol(CfgStore& store, ProtocolDraft draft) {
  ProtocolRefusal refusal = CheckProtocolEdit(draft.Name);
  if (refusal == ProtocolRefusal::None) refusal = CheckProtocolDraft(draft);
  if (refusal != ProtocolRefusal::None) return refusal;
  const SectionChange planned = EditedSection(store.CfgText, draft);
  if (planned.Refused != ProtocolRefusal::None) return planned.Refused;
  ReplaceAndSave(store, planned.Change.In(store.CfgText));
  return ProtocolRefusal::None;
}

ProtocolRefusal DeleteProtocol(CfgStore& store, std::string_view protocol) {
  const ProtocolRefusal refusal = CheckProtocolDelete(protocol);
  if (refusal != ProtocolRefusal::None) return refusal;
  const SectionChange planned = WithoutSection(store.CfgText, protocol);
  if (planned.Refused != ProtocolRefusal::None) return planned.Refused;
  ReplaceAndSave(store, WithCurrentProtocol(planned.Change.In(store.CfgText), 0));
  return ProtocolRefusal::None;
}

}  // namespace keplo
