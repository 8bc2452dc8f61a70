#include "remotes/import_reasons.h"

#include <cstdlib>

namespace keplo {

void AddReason(PlannedKey& planned, std::string_view reason) {
  if (!planned.Reason.empty() && !reason.empty()) planned.Reason += "; ";
  planned.Reason += reason;
}

void TellOtherSending(std::string_view name, const SectionSignal& section, PlannedKey& planned) {
  const std::string quoted = "[" + std::string(name) + "]";
  const RemoteKey& key = *planned.Key;
  const int carrier = section.Params.Carrier;
  if (key.Carrier && 100 * std::abs(*key.Carrier - carrier) > carrier) {
    AddReason(planned, quoted + " sends it on " + std::to_string(carrier) + " Hz, and the file says " +
                           std::to_string(*key.Carrier));
  }
  if (planned.IsRaw || !key.Coded || key.Coded->Again.Kind == RepeatKind::Unknown) return;
  const std::optional<CodedSignal> sent = KeyOfCode(section, key.Coded->Digits).Coded;
  if (!sent || sent->Again.Kind == key.Coded->Again.Kind) return;
  AddReason(planned, quoted + " repeats it by \"" + std::string(NameOf(sent->Again.Kind)) +
                         "\", and the file says \"" + std::string(NameOf(key.Coded->Again.Kind)) + '"');
}

void TellToggle(std::optional<std::size_t> digit, PlannedKey& planned) {
  if (!digit) return;
  AddReason(planned, "the remote turns digit " + std::to_string(*digit + 1) +
                         " over with each press, and one of both codes is stored");
}

void TellMeeting(StoredCodes::Meeting how, const std::string& with, PlannedKey& planned) {
  std::string reason;
  switch (how) {
    case StoredCodes::Meeting::Equal:
      reason = "known: the code is that of " + with;
      planned.Section = with.substr(0, with.find('&'));
      planned.Name = with.substr(with.find('&') + 1);
      break;
    case StoredCodes::Meeting::BeginsOther:
      reason = "shadowed: the code is the beginning of that of " + with;
      break;
    case StoredCodes::Meeting::BeginsWithOther:
      reason = "shadowed: the code begins with that of " + with;
  }
  planned.Reason = reason + (planned.Reason.empty() ? "" : "; ") + planned.Reason;
}

}  // namespace keplo
