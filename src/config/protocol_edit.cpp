#include "config/protocol_edit.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "config/carrier.h"
#include "config/change_value.h"
#include "config/check_config.h"
#include "config/commands.h"
#include "config/generic_protocols.h"
#include "config/key_table.h"
#include "config/lookup.h"
#include "config/parse_number.h"
#include "config/protocols.h"
#include "config/sections.h"
#include "config/send_as_line.h"
#include "config/valid_names.h"

namespace keplo {

namespace {

constexpr std::size_t kShortestName = 3, kLongestName = 12;
constexpr int kShortestSilence = 16;  // slots; anything shorter is part of a frame

/// Where the search for a section begins: text before [General] is not a section, even if it looks like one.
int StartOfSections(std::string_view text) { return std::max(FindNoCase("[General]", text, 1), 1); }

std::optional<Section> FindClosed(std::string_view text, std::string_view protocol) {
  return FindProtocolSection(text, protocol, StartOfSections(text));
}

/// Position of the second GPROTO= that begins a line of a section; 0 if there is none.
int SecondGenericKey(std::string_view text, const Section& section) {
  const std::string_view upToNext = text.substr(0, static_cast<std::size_t>(section.End - 1));
  const std::string inNewLine = "\n" + std::string(kGenericKey);
  return FindNoCase(inNewLine, upToNext, FindNoCase(inNewLine, upToNext, section.Begin));
}

/// Like FindClosed, for a change: the section must be the one that is read, and not two that have merged
/// because a header is damaged.
ProtocolResult FindToChange(std::string_view text, std::string_view protocol, Section& section) {
  const std::optional<Section> found = FindClosed(text, protocol);
  if (!found) return ProtocolRefusal::NoSection;
  section = *found;
  if (FindSection(text, protocol)->Begin != section.Begin) return ProtocolRefusal::SectionBeforeGeneral;
  const int second = SecondGenericKey(text, section);
  if (second != kNowhere) return {ProtocolRefusal::HeaderMissing, LineNumber(text, second)};
  return {};
}

/// The text before a header in the same line.
std::string_view TextBeforeHeader(std::string_view text, int header) {
  const int lineBefore = SeekBack(text, header, '\n');
  return text.substr(static_cast<std::size_t>(lineBefore), static_cast<std::size_t>(header - 1 - lineBefore));
}

/// Reads the keys of a section; the search for each begins after the previous one.
class SectionKeys {
 public:
  SectionKeys(std::string_view text, const Section& section)
      : text_(text.substr(0, static_cast<std::size_t>(section.End - 1))), position_(section.Begin) {}

  /// The rest of the line after a key; if it is missing, this and all later calls return an empty text.
  std::string Take(std::string_view key) {
    position_ = FindNoCase(key, text_, position_);
    return std::string(GetLineAt(text_, position_));
  }
  /// Like Take, but ends at the very next CR, so that the next line is never included.
  std::string TakeLine(std::string_view key) {
    position_ = FindNoCase(key, text_, position_);
    const bool isEmpty = SeekForward(text_, position_, '\r') == position_;
    return isEmpty ? std::string() : std::string(GetLineAt(text_, position_));
  }
  /// Position just after the last key; 0 if one was missing.
  int Position() const { return position_; }

 private:
  std::string_view text_;
  int position_;
};

/// The value of a text that is nothing but a number.
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
  int AfterLastKey = 0;  // where the value of GREPEAT= begins
};

std::optional<ReadSection> Read(std::string_view text, std::string_view protocol) {
  const std::optional<Section> section = FindClosed(text, protocol);
  if (!section) return std::nullopt;
  SectionKeys keys(text, *section);
  ReadSection read;
  read.Draft.Name = protocol;
  read.Draft.Description = keys.TakeLine("#");
  read.Draft.ProtoKind = WithoutFraction<std::int16_t>(keys.Take(kGenericKey));
  std::string last;
  for (const ParameterKey& key : kParameterKeys) {
    last = keys.Take(key.Search);
    TakeParameter(key, last, read.Draft.Params);
  }
  read.AfterLastKey = keys.Position();
  const std::optional<std::int16_t> gRepeat = WholeNumber(last);
  if (read.AfterLastKey == kNowhere || !gRepeat || !IsGenericProtocol(read.Draft.ProtoKind)) {
    return std::nullopt;
  }
  read.Draft.Params.GREPEAT = *gRepeat;
  read.Draft.Params.Carrier = CarrierOf(text, protocol);
  if (const auto section = FindSection(text, protocol)) read.Draft.Params.SENDAS = SendAsOf(text, *section);
  return read;
}

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
  if (description.find_first_of("\r\n") != std::string_view::npos)
    return ProtocolRefusal::LineBreakInDescription;
  return FindNoCase("GPROTO=", description, 1) == kNowhere ? ProtocolRefusal::None
                                                           : ProtocolRefusal::KeyInDescription;
}

/// Why a block cannot be inserted before a line end that should be followed directly by the line of a header.
ProtocolRefusal CheckHeaderAfter(std::string_view text, int lineEnd, int header) {
  const std::string_view between =
      text.substr(static_cast<std::size_t>(lineEnd), static_cast<std::size_t>(header - lineEnd - 1));
  if (between.empty() || between.front() != '\n' || between.find('\n', 1) != std::string_view::npos) {
    return ProtocolRefusal::LineEnds;
  }
  return Trimmed(between.substr(1)).empty() ? ProtocolRefusal::None : ProtocolRefusal::HeaderLine;
}

}  // namespace

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
  std::string lines =
      "# " + draft.Description + "\r\n" + std::string(kGenericKey) + KeyNumber(draft.ProtoKind);
  for (const ParameterKey& key : kParameterKeys) {
    lines.append("\r\n").append(key.Search);
    lines += key.Number != nullptr ? KeyNumber(draft.Params.*key.Number) : " " + draft.Params.*key.Pattern;
  }
  return lines;
}

SectionChange NewSection(std::string_view text, const ProtocolDraft& draft) {
  const std::optional<Section> next = FindSection(text, "Template", StartOfSections(text));
  const int header = next ? SeekBack(text, next->Begin - 1, '[') : kNowhere;
  const int place = SeekBack(text, header, '\r');
  if (place == kNowhere) return ProtocolRefusal::NoTemplate;
  const ProtocolRefusal refusal = CheckHeaderAfter(text, place, header);
  if (refusal != ProtocolRefusal::None) return refusal;
  return Splice{place, place - 1,
                "\r\n[" + draft.Name + "]\r\n" + ParameterLines(draft) + "\r\n\r\n" +
                    std::string(kPlaceholderLine) + "\r\n"};
}

SectionChange EditedSection(std::string_view text, const ProtocolDraft& draft) {
  Section section;
  const ProtocolResult found = FindToChange(text, draft.Name, section);
  if (!found.Done()) return found;
  const int headerEnd = SeekForward(text, section.Begin, '\n');
  if (headerEnd == kNowhere || SeekForward(text, section.Begin, '\r') != headerEnd - 1) {
    return ProtocolRefusal::LineEnds;
  }
  const std::optional<ReadSection> read = Read(text, draft.Name);
  const int lastEnd = read ? SeekForward(text, read->AfterLastKey, '\r') : kNowhere;
  if (lastEnd == kNowhere || lastEnd > section.End) return ProtocolRefusal::NoSection;
  if (lastEnd <= headerEnd) return ProtocolRefusal::HeaderLine;
  if (const auto command = CommandLineWithin(text, draft.Name, headerEnd + 1, lastEnd - 1)) {
    return ProtocolResult{ProtocolRefusal::CommandAmongKeys, LineNumber(text, command->First)};
  }
  return Splice{headerEnd + 1, lastEnd - 1, ParameterLines(draft)};
}

SectionChange WithoutSection(std::string_view text, std::string_view protocol) {
  Section section;
  const ProtocolResult found = FindToChange(text, protocol, section);
  if (!found.Done()) return found;
  // The user may mean the other one, and a deletion loses data.
  if (const std::optional<Section> other = FindSection(text, protocol, section.End)) {
    return ProtocolResult{ProtocolRefusal::DuplicateSection, LineNumber(text, other->Begin - 1)};
  }
  // A stray bracket begins a second section, up to the end of the real one.
  if (protocol.find('[') != std::string_view::npos) return ProtocolRefusal::HeaderLine;
  const int first = SeekBack(text, section.Begin - 1, '['), last = SeekBack(text, section.End, '\n');
  // Text before either header would be left over, and a command would end up in another section.
  const bool leavesText = !Trimmed(TextBeforeHeader(text, first)).empty();
  const bool leavesCommand = TextBeforeHeader(text, section.End).find(',') != std::string_view::npos;
  if (leavesText || leavesCommand || last < first) return ProtocolRefusal::HeaderLine;
  return Splice{first, last, {}};
}

int ProtocolIndexOf(std::string_view text, std::string_view protocol) {
  const std::vector<std::string> names = ListProtocols(text);
  return static_cast<int>(std::find(names.begin(), names.end(), protocol) - names.begin());
}

std::string WithCurrentProtocol(const std::string& text, int index) {
  return WithGeneralValue(text, "PROTOCOL", std::to_string(index)).value_or(text);
}

ProtocolResult AddProtocol(CfgStore& store, ProtocolDraft draft) {
  ProtocolRefusal refusal = CheckProtocolName(store.CfgText, draft.Name);
  if (refusal == ProtocolRefusal::None) refusal = CheckProtocolDraft(draft);
  if (refusal != ProtocolRefusal::None) return refusal;
  const SectionChange planned = NewSection(store.CfgText, draft);
  if (!planned.Refused.Done()) return planned.Refused;
  const std::string text = planned.Change.In(store.CfgText);
  ReplaceAndSave(store, WithCurrentProtocol(text, ProtocolIndexOf(text, draft.Name)));
  return ProtocolRefusal::None;
}

std::string WithEdit(const std::string& text, const ProtocolDraft& draft, const Splice& edit) {
  const std::optional<ProtocolDraft> before = LoadProtocol(text, draft.Name);
  const ProtocolParams& after = draft.Params;
  const bool sameSilence = before && before->Params.SENDPLS == after.SENDPLS &&
                           before->Params.REPEAT == after.REPEAT && before->Params.GREPEAT == after.GREPEAT;
  return sameSilence ? edit.In(text) : WithoutPeriod(edit.In(text), draft.Name);
}

ProtocolResult EditProtocol(CfgStore& store, ProtocolDraft draft) {
  ProtocolRefusal refusal = CheckProtocolEdit(draft.Name);
  if (refusal == ProtocolRefusal::None) refusal = CheckProtocolDraft(draft);
  if (refusal != ProtocolRefusal::None) return refusal;
  const SectionChange planned = EditedSection(store.CfgText, draft);
  if (!planned.Refused.Done()) return planned.Refused;
  ReplaceAndSave(store, WithEdit(store.CfgText, draft, planned.Change));
  return ProtocolRefusal::None;
}

ProtocolResult DeleteProtocol(CfgStore& store, std::string_view protocol) {
  const ProtocolRefusal refusal = CheckProtocolDelete(protocol);
  if (refusal != ProtocolRefusal::None) return refusal;
  const SectionChange planned = WithoutSection(store.CfgText, protocol);
  if (!planned.Refused.Done()) return planned.Refused;
  std::string rest = planned.Change.In(store.CfgText);
  // What looked like a header may have hidden damage of the section before it.
  if (!HasWholeSections(rest) && HasWholeSections(store.CfgText)) return ProtocolRefusal::HeaderLine;
  if (WalkSections(rest).Ended == WalkEnd::ClosingHeader) {
    // One save for both, since a second one could fail.
    ReplaceAndSave(store, WithCurrentProtocol(rest, 0));
  } else {
    store.ReplaceText(std::move(rest));
  }
  return ProtocolRefusal::None;
}

}  // namespace keplo
