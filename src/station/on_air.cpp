#include "station/on_air.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "config/commands.h"
#include "config/protocols.h"
#include "config/raw_store.h"
#include "config/transmission.h"
#include "failure.h"
#include "signal/first_analysis.h"
#include "signal/raw/raw_digits.h"
#include "signal/runs.h"
#include "signal/sample_words.h"
#include "signal/send_as.h"
#include "signal/send_bits.h"
#include "signal/zone_link.h"

namespace keplo {

namespace {

/// Edges are sent with an error of half a slot at most, which is as accurate as receivers are.
constexpr std::int32_t kSlotOfLengths = 25;  // microseconds

/// @return why nothing was sent; empty if it was
std::string Send(const Settings& settings, Win32Ser& line, const Transmission& transmission) {
  if (settings.VexilMode > 0 && !SendZone(line, settings.VexilMode)) {
    return "zone " + std::to_string(settings.VexilMode) +
           ", which is chosen for sending (VEXIL), cannot be selected";
  }
  PrepareToSend(line);
  PutOnAir(line, transmission, settings.InterfaceType);
  return {};
}

std::vector<std::int32_t> TimingsOf(const KeploMod& mod, std::span<const int> known) {
  std::vector<std::int32_t> timings;
  const auto add = [&](std::size_t place, std::int32_t length) {
    timings.push_back(place % 2 == 0 ? length : -length);
  };
  // Without the silence at the end.
  const std::size_t marks = known.empty() ? 0 : (known.size() - 1) / 2 * 2 + 1;
  for (std::size_t place = 0; place < marks; ++place) add(place, known[place]);
  if (marks > 0) return timings;
  SampleWords samples;
  samples.Read(mod.Signal.RawCapture);
  RunReader reader;
  const RunSpan runs = reader.Read(samples);
  // A capture that begins within a space has a first mark of length 0.
  const std::size_t first = !runs.empty() && runs.front() == 0 ? 2 : 0;
  const std::size_t end =
      EndsInMark(runs) ? runs.size() : runs.size() - std::min<std::size_t>(runs.size(), 1);
  for (std::size_t place = first; place < end; ++place) {
    add(place, static_cast<std::int32_t>(std::lround(runs[place] * mod.Signal.SampleTime)));
  }
  return timings;
}

}  // namespace

HeardSignal HeardOnAir(const KeploMod& mod, const Win32Ser& line, const TickReport& tick) {
  HeardSignal heard;
  if (const SignalOrigin* const origin = line.Origin()) {
    if (origin->IsPublic) return heard;
    heard.Zone = origin->Zone;
  }
  heard.Timings = TimingsOf(mod, line.ToldLengths());
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
  std::int64_t end = 0;  // microseconds
  for (const std::int32_t length : timings) {
    end += std::abs(length);
    const auto last = static_cast<std::size_t>((end + kSlotOfLengths / 2) / kSlotOfLengths);
    if (last > kMostSlots) return "it is longer than what can be sent";
    slots.append(std::max(last, slots.size()) - slots.size(), length > 0 ? '1' : '0');
  }
  return Send(mod.Settings, line, {PadToBytes(std::move(slots)), kSlotOfLengths, carrier});
}

std::string SendLearned(KeploMod& mod, Win32Ser& line, std::string_view reference) try {
  const std::size_t mark = reference.find('&');
  const std::string protocol(reference.substr(0, mark));
  const std::string name(mark == std::string_view::npos ? "" : reference.substr(mark + 1));
  std::string unknown = "keplo.cfg has no command " + std::string(reference);
  const auto command = FindLearned(mod.Store.CfgText, protocol, name);
  if (!command || command->Code.size() < 2) return unknown;
  ProtocolParams params;
  std::int16_t kind = kUnknown;
  const std::string stored = StoredProtocol(mod.Store.CfgText, protocol).value_or(protocol);
  if (!LoadProtocolParams(mod.Store.CfgText, stored, params, kind)) return unknown;
  if (mod.Settings.Analysis == Analysis::First) params.SENDAS = WithoutWays(params.SENDAS);
  const bool isRaw = AreRawDigits(std::string_view(command->Code).substr(1));
  if (isRaw && FindRawSignal(mod.Store, command->Code) == nullptr) {
    return "the lengths of " + std::string(reference) + " are missing or damaged";
  }
  const Transmission transmission =
      TransmissionOfCode(mod.Store, command->Code, kind, params, mod.Rc5Toggle, mod.Rc5Toggle ? 1 : 0);
  if (isRaw) mod.Rc5Toggle = !mod.Rc5Toggle;
  return Send(mod.Settings, line, transmission);
} catch (const Failure& tooLong) {
  return tooLong.what();
}

}  // namespace keplo
