#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>

#include "disk/read_input.h"
#include "formats/families.h"
#include "formats/recording.h"
#include "formats/remote.h"
#include "formats/trade/reading.h"
#include "formats/trade/trade_formats.h"

namespace keplo {

namespace {

/// The table lives as long as the program, but its rows are built in files whose order at start is not told.
std::span<const RemoteFormat> AllFormats() {
  using namespace trade;
  static const std::array kAll = {kFlipperFormat, kLircFormat,    kGirrFormat,          kKeymapFormat,
                                  kEsphomeFormat, kTasmotaFormat, kHomeAssistantFormat, kSmartIrFormat,
                                  kIrdbFormat,    kProntoFormat,  kPulseFormat,         kSignedFormat};
  return kAll;
}

std::string AllNames() {
  std::string names;
  for (const RemoteFormat& format : AllFormats()) {
    if (!names.empty()) names += ", ";
    names += format.Name;
  }
  return names;
}

void RefuseWhatIsNoText(std::string_view text, const std::string& path) {
  if (text.size() > kLargestRecording) {
    throw FormatError(path + ": larger than the " + std::to_string(kLargestRecording) +
                      " bytes that a file of remotes may have");
  }
  if (const std::size_t place = text.find('\0'); place != std::string_view::npos) {
    const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n');
    throw FormatError(path + ", line " + std::to_string(line) +
                      ": found a byte of value 0, expected text; save the file as UTF-8");
  }
}

const RemoteFormat& DetectFormat(std::string_view text, const std::string& path) {
  const std::span<const RemoteFormat> all = AllFormats();
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const RemoteFormat& format) { return format.Detect(text); });
  if (found == all.end()) {
    throw FormatError(path + ": it is of no known format; tried were " + AllNames() +
                      ". If you know which it is, tell keplo import or keplo convert by --format");
  }
  return *found;
}

/// Whether a signal gives each length of the first frame of a press within half a unit.
bool GivesEach(const CodedSignal& signal, const PulseTrain& press) {
  const PulseTrain frame = FrameLengths(signal);
  return frame.size() <= press.size() &&
         std::equal(frame.begin(), frame.end(), press.begin(),
                    [&](int a, int b) { return 2 * std::abs(a - b) <= signal.Code.Unit; });
}

/// Gives a key of lengths the digits of its first form.
void TakeLengths(RemoteKey& key) {
  key.Coded = ReadPress(key.Lengths, key.Carrier);
  // A length that strays where none was heard is one of its own.
  if (key.Coded && key.Described && !GivesEach(*key.Coded, key.Lengths)) key.Coded.reset();
  if (key.Coded && key.Described && key.Described->Kind != RepeatKind::Unknown)
    key.Coded->Again = *key.Described;
}

constexpr std::string_view kOtherSignal = "every second press is another signal, which is not kept";
constexpr std::string_view kFurtherDigits =
    "more than one digit is another with every second press, and only the first of them is kept";

/// Whether it is a second form that a key has lost.
bool IsOfForms(std::string_view lost) { return lost == kOtherSignal || lost == kFurtherDigits; }

bool KeepsOneForm(KeptForms kept) { return kept == KeptForms::First || kept == KeptForms::Digit; }

/// Whether a format loses that every second press of a protocol or of digits differs; RC5 is sent so anyway.
bool LosesTurns(const RemoteKey& key, KeptForms kept) {
  if (!key.Coded) return KeepsOneForm(kept) && key.Protocol && !key.Toggled.empty();
  return kept < KeptForms::Digit && key.Coded->Toggle && key.Coded->Code.Line != LineCode::Biphase;
}

/// Gives a key the digit that its second form turns over.
void TakeToggled(RemoteKey& key) {
  const auto lose = [&](std::string_view what) {
    if (key.Lost.empty()) key.Lost = what;
  };
  const std::optional<CodedSignal> other = ReadPress(key.Toggled, key.Carrier);
  const std::string& digits = key.Coded->Digits;
  if (!other || other->Digits.size() != digits.size()) {
    return lose(kOtherSignal);
  }
  key.Coded->Toggle = FirstDifference(digits, other->Digits);
  if (key.Coded->Toggle &&
      digits.substr(*key.Coded->Toggle + 1) != other->Digits.substr(*key.Coded->Toggle + 1))
    lose(kFurtherDigits);
}

}  // namespace

std::string Complaint::Message() const {
  std::string text = File;
  const auto add = [&](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  if (Line > 0) add("line " + std::to_string(Line));
  if (!Key.empty()) add("key " + trade::Quoted(Key));
  return text.empty() ? Text : text + ": " + Text;
}

std::span<const RemoteFormat> RemoteFormats() { return AllFormats(); }

const RemoteFormat& RemoteFormatNamed(std::string_view name) {
  for (const RemoteFormat& format : AllFormats()) {
    if (trade::SameNoCase(format.Name, name)) return format;
  }
  throw FormatError("There is no format " + trade::Quoted(name) + "; expected one of " + AllNames());
}

RemoteFile ReadRemotes(std::string_view text, const std::string& path, std::string_view format) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  RefuseWhatIsNoText(text, path);
  const RemoteFormat& chosen = format.empty() ? DetectFormat(text, path) : RemoteFormatNamed(format);
  RemoteFile file;
  file.Format = chosen.Name;
  chosen.Read(text, path, file);
  for (Remote& remote : file.Remotes) {
    for (RemoteKey& key : remote.Keys) {
      if (!key.Coded && !key.Lengths.empty()) TakeLengths(key);
      if (key.Coded && !key.Toggled.empty()) TakeToggled(key);
    }
  }
  std::erase_if(file.Remotes, [](const Remote& remote) { return remote.Keys.empty(); });
  if (file.Remotes.empty() && file.Complaints.empty()) {
    throw FormatError(path + ": there is no key in it, read as " + std::string(chosen.Name));
  }
  return file;
}

RemoteFile LoadRemotes(const std::string& path, std::string_view format) {
  const std::string name = path == "-" ? "standard input" : path;
  std::string text;
  try {
    text = ReadInput(path, kLargestRecording);
  } catch (const std::system_error& error) {
    throw FormatError(name + ": cannot be read: " + error.code().message());
  }
  return ReadRemotes(text, name, format);
}

std::string WriteRemotes(std::string_view format, const std::vector<Remote>& remotes,
                         std::vector<Complaint>& told) {
  const RemoteFormat& chosen = RemoteFormatNamed(format);
  std::size_t number = 0;
  for (const Remote& remote : remotes) {
    for (const RemoteKey& key : remote.Keys) {
      ++number;
      if (!key.Lost.empty() && !(chosen.Forms == KeptForms::Both && IsOfForms(key.Lost)))
        trade::TellOnce(told, key.Lost);
      if (LosesTurns(key, chosen.Forms))
        trade::TellOnce(told, "the format keeps the first form of keys whose every second press differs");
      if (key.Toggled.empty() || key.Coded || key.Protocol || !KeepsOneForm(chosen.Forms)) continue;
      trade::TellOfKey(
          told, key, trade::NameFor(key, number),
          "only the first of its two forms is kept, so that every second press of it is not known");
    }
  }
  return chosen.Write(remotes, told);
}

}  // namespace keplo
