#include "window/recorded_signal.h"

#include "config/cfg_text.h"
#include "signal/pattern_sets.h"

namespace keplo {

namespace {

/// Slots of silence assumed before a repeat in a recording, which does not have a number for it.
constexpr std::int16_t kRecordedRepeat = 50;

std::int16_t RecordedGRepeat(std::string_view syncType) {
  if (syncType == "0") return 0;
  return syncType == "1" ? std::int16_t{1} : kRecordedRepeat;
}

}  // namespace

bool RecordedSignal::HasCode() const { return !Trimmed(Code).empty() && !Trimmed(Bits).empty(); }

RecordedSignal ShownSignal(const ReadingFields& fields, std::int16_t protoKind) {
  return {.Code = fields.CodeStr.Text(),
          .Bits = fields.BitNr.Text(),
          .Repeats = EqualNoCase(Trimmed(fields.Rpt.Text()), "y"),
          .SyncType = std::string(Trimmed(fields.GType.Text())),
          .ProtoKind = protoKind,
          .Pulse = fields.SendPulse.Text()};
}

void SetParams(const RecordedSignal& recorded, ProtocolParams& params) {
  params.REPEAT = recorded.Repeats ? kRecordedRepeat : std::int16_t{0};
  params.GREPEAT = RecordedGRepeat(recorded.SyncType);
  params.Carrier = kUsualCarrier;
  if (const PatternSet* patterns = FindPatternSet(recorded.ProtoKind)) {
    params.BITG = patterns->BITG;
    params.BIT0 = patterns->BIT0;
    params.BIT1 = patterns->BIT1;
  }
}

}  // namespace keplo
