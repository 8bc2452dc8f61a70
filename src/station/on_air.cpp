#include "station/on_air.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "config/commands.h"
#include "config/protocols.h"
#include "config/raw_store.h"
#include "failure.h"
#include "signal/raw/raw_digits.h"
#include "signal/raw/raw_send.h"
#include "signal/runs.h"
#include "signal/sample_time.h"
#include "signal/sample_words.h"
#include "signal/send_bits.h"
#include "signal/timing.h"

namespace keplo {

namespace {

/// No edge is sent further than half of it from its place; receivers tell lengths no better.
constexpr std::int32_t kSlotOfLengths = 25;  // microseconds

void PutOnAir(Win32Ser& line, const std::string& bytes, std::int32_t slot, std::int32_t carrier,
              std::int16_t interfaceType) {
  line.DTR(0);
  line.RTS(-1);
  line.SetCarrier(carrier);
  line.IRSend(bytes, slot, interfaceType);
}

}  // namespace

HeardSignal HeardOnAir(const KeploMod& mod, const TickReport& tick) {
  HeardSignal heard;
  SampleWords samples;
  samples.Read(mod.Signal.RawCapture);
  RunReader reader;
  const RunSpan runs = reader.Read(samples);
  const double sample = SampleTimeOf(mod.Settings.ProcDelay);
  // A capture that began within a space has a first mark of no length.
  std::size_t first = !runs.empty() && runs.front() == 0 ? 2 : 0;
  // The silence at the end is not of the signal.
  const std::size_t end =
      EndsInMark(runs) ? runs.size() : runs.size() - std::min<std::size_t>(runs.size(), 1);
  for (; first < end; ++first) {
    const auto length = static_cast<std::int32_t>(std::lround(runs[first] * sample));
    heard.Timings.push_back(first % 2 == 0 ? length : -length);
  }
  if (!tick.Reading.HasCode()) return heard;
  const bool isRaw = tick.Reading.Ended == Stage::Raw;
  heard.Protocol = isRaw ? "RAW" : ProtoKindName(mod.Signal.Measured.ProtoKind);
  heard.Code = tick.Reading.Digits;
  heard.Command = tick.Dispatched.Reference;
  return heard;
}

std::string SendLengths(const KeploMod& mod, Win32Ser& line, std::span<const std::int32_t> timings,
                        std::int32_t carrier) {
  std::string slots;
  std::int64_t end = 0;  // of what was asked for so far, microseconds
  for (const std::int32_t length : timings) {
    end += std::abs(length);
    const auto last = static_cast<std::size_t>((end + kSlotOfLengths / 2) / kSlotOfLengths);
    if (last > kMostSlots) return "it is longer than what can be sent";
    slots.append(std::max(last, slots.size()) - slots.size(), length > 0 ? '1' : '0');
  }
  PutOnAir(line, BitsToChars(PadToBytes(slots)), kSlotOfLengths, carrier, mod.Settings.InterfaceType);
  return {};
}

std::string SendLearned(KeploMod& mod, Win32Ser& line, std::string_view reference, bool& toggle) try {
  const std::size_t mark = reference.find('&');
  const std::string protocol(reference.substr(0, mark));
  const std::string name(mark == std::string_view::npos ? "" : reference.substr(mark + 1));
  const std::string unknown = "keplo.cfg has no command " + std::string(reference);
  const std::vector<LearnedCommand> commands = ListCommands(mod.Store.CfgText, protocol);
  const auto command = std::find_if(commands.begin(), commands.end(),
                                    [&](const LearnedCommand& known) { return known.Name == name; });
  if (command == commands.end() || command->Code.size() < 2) return unknown;
  ProtocolParams params;
  std::int16_t kind = kUnknown;
  if (!LoadProtocolParams(mod.Store.CfgText, protocol, params, kind)) return unknown;
  if (mod.Settings.Analysis == Analysis::First) params.SENDAS.clear();
  std::string code = command->Code.substr(1);
  if (AreRawDigits(code)) {
    const RawSignal* raw = FindRawSignal(mod.Store, command->Code);
    if (raw == nullptr) return "the lengths of " + std::string(reference) + " are missing or damaged";
    toggle = !toggle;
    const RawLengths& form = raw->Forms[toggle ? 0 : raw->Forms.size() - 1];
    PutOnAir(line, RawSlotBytes(form), kRawSlot, params.Carrier, mod.Settings.InterfaceType);
    return {};
  }
  const std::string slots = BuildSendBits(code, kind, params, toggle);
  PutOnAir(line, BitsToChars(PadToBytes(slots)), params.SENDPLS, params.Carrier, mod.Settings.InterfaceType);
  return {};
} catch (const Failure& tooLong) {
  return tooLong.what();
}

}  // namespace keplo
