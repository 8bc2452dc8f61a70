#include "signal/send_bits.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "signal/decode.h"
#include "signal/first_analysis.h"
#include "signal/pattern_sets.h"
#include "signal/rc6.h"
#include "signal/sample_bits.h"
#include "signal/send_as.h"

namespace keplo {

namespace {

constexpr std::size_t kRepeats = 4;           // a repeating code goes out five times in all
constexpr std::size_t kMostSamples = 32'760;  // whole bytes; positions have 16 bits

std::size_t Slots(std::int16_t count) { return count > 0 ? static_cast<std::size_t>(count) : 0; }

/// The repeat of a pulse distance protocol: the frame's sync, short, and a closing mark.
std::string ShortRepeat() { return std::string(16, '1') + std::string(4, '0') + "1"; }

/// Counts one digit more, since the toggle digit may become the longer one.
std::size_t FrameLength(std::string_view code, const ProtocolParams& params) {
  const auto zeros = static_cast<std::size_t>(std::count(code.begin(), code.end(), '0'));
  const auto ones = static_cast<std::size_t>(std::count(code.begin(), code.end(), '1'));
  return zeros * params.BIT0.size() + ones * params.BIT1.size() +
         std::max(params.BIT0.size(), params.BIT1.size()) + params.BITG.size();
}

constexpr int kTurns = 3;  // of two frames: enough for a receiver that waits for three frames
constexpr std::int16_t kUsualTurnGap = 45;  // slots, where the parameters name no silence

/// Silence between two frames that take turns, slots.
std::size_t TurnGap(const ProtocolParams& params) {
  const std::int16_t named = std::max(params.REPEAT, params.GREPEAT);
  return Slots(named > 1 ? named : kUsualTurnGap);
}

constexpr std::int16_t kShortestSilence = 16;  // slots, that a period leaves behind a longer frame

/// A little more than the transmission will be long.
std::size_t LengthBound(std::string_view code, std::string_view way, const ProtocolParams& params) {
  const auto period = static_cast<std::size_t>(PeriodOf(params.SENDAS)) + kShortestSilence;
  if (IsSentInTurns(code, way)) {
    return kTurns * (FrameLength(code, params) + params.BITG.size() + 2 * (TurnGap(params) + 1));
  }
  const std::size_t frame = FrameLength(code, params);
  std::size_t repeat = 0;
  if (params.REPEAT != 0) {
    repeat = std::max(Slots(params.REPEAT), period) + frame;
  } else if (params.GREPEAT > 1) {
    repeat = std::max(Slots(params.GREPEAT), period) + ShortRepeat().size();
  }
  return frame + kRepeats * repeat;
}

void WriteToggle(std::string& code, bool& rc5Toggle) {
  rc5Toggle = !rc5Toggle;
  if (code.size() > kToggleBitOffset) code[kToggleBitOffset] = rc5Toggle ? '1' : '0';
}

std::string FrameBody(std::string_view code, const ProtocolParams& params) {
  std::string body;
  for (const char digit : code) {
    if (digit == '0') body += params.BIT0;
    if (digit == '1') body += params.BIT1;
  }
  return body + params.BitTail;
}

/// Whether digits are marks of one length and spaces of two.
bool HasPulseDistances(const ProtocolParams& params) {
  const auto markOf = [](const std::string& bit) { return std::min(bit.find('0'), bit.size()); };
  const auto isPulse = [&](const std::string& bit) {
    return markOf(bit) > 0 && bit.find('1', markOf(bit)) == std::string::npos;
  };
  return isPulse(params.BIT0) && isPulse(params.BIT1) && markOf(params.BIT0) == markOf(params.BIT1) &&
         params.BIT0.size() != params.BIT1.size();
}

/// Two alternating frames, each with its sync.
std::string TurnSlots(std::string_view code, std::string_view way, const ProtocolParams& params) {
  const std::string gap(TurnGap(params), '0');
  std::string first = params.BITG + FrameBody(code.substr(0, code.size() / 2), params);
  std::string second = params.BITG + FrameBody(code.substr(code.size() / 2), params);
  if (IsSentFromSecond(way)) first.swap(second);
  std::string slots;
  for (int turn = 0; turn < kTurns; ++turn) {
    if (turn > 0) slots += gap;
    slots.append(first).append(gap).append(second);
  }
  return slots;
}

constexpr std::int16_t kRc6Slot = 444;  // microseconds

bool IsSentAsRc6(std::string_view code, std::int16_t protoKind, const ProtocolParams& params) {
  return (protoKind == kRc6 || WayOf(code, params.SENDAS) == kSendAsRc6) && IsRc6Code(code);
}

/// A section that was made for RC6 has its patterns; any other may hold such a code, and counts in slots of
/// its own.
bool HasPatternsOfRc6(const ProtocolParams& params) {
  const PatternSet& rc6 = *FindPatternSet(kRc6);
  return params.BIT0 == rc6.BIT0 && params.BIT1 == rc6.BIT1;
}

ProtocolParams WithPatternsOfRc6(ProtocolParams params) {
  if (HasPatternsOfRc6(params)) return params;
  const PatternSet& rc6 = *FindPatternSet(kRc6);
  params.BITG = rc6.BITG;
  params.BIT0 = rc6.BIT0;
  params.BIT1 = rc6.BIT1;
  const auto inSlots = [&](std::size_t ownSlots) {
    return static_cast<std::int16_t>(
        std::min<std::size_t>(ownSlots * Slots(params.SENDPLS) / kRc6Slot, INT16_MAX));
  };
  // A section that repeats in a short form has the silence in GREPEAT.
  const std::int16_t silence = params.REPEAT == 0 && params.GREPEAT > 1 ? params.GREPEAT : params.REPEAT;
  params.REPEAT = 0;
  if (silence > 0) params.REPEAT = std::max<std::int16_t>(inSlots(Slots(silence)), kShortestSilence);
  if (const int period = PeriodOf(params.SENDAS); period > 0) {
    params.SENDAS = SendEvery(inSlots(static_cast<std::size_t>(period)));
  }
  params.GREPEAT = params.REPEAT;  // each repeat has its leader
  return params;
}

/// What follows the frame after a silence, and follows it as often as kRepeats.
std::string RepeatSlots(const std::string& body, const ProtocolParams& params) {
  const bool ownSync = params.GREPEAT > 1;
  if (params.REPEAT == 0) return ownSync ? ShortRepeat() : std::string();
  return (ownSync ? params.BITG : "") + body;
}

/// Silence after a frame or repeat, slots.
std::size_t SilenceAfter(const std::string& frame, const ProtocolParams& params) {
  if (const int period = PeriodOf(params.SENDAS); period > 0) {
    return static_cast<std::size_t>(std::max<int>(period - static_cast<int>(frame.size()), kShortestSilence));
  }
  return Slots(params.REPEAT != 0 ? params.REPEAT : params.GREPEAT);
}

/// A frame and its repeats.
std::string WithRepeats(std::string frame, const std::string& repeat, const ProtocolParams& params) {
  if (params.REPEAT == 0 && params.GREPEAT <= 1) return frame;
  const std::string silence(SilenceAfter(frame, params), '0');
  const std::string next = repeat + std::string(SilenceAfter(repeat, params), '0');
  frame += silence;
  for (std::size_t count = 1; count < kRepeats; ++count) frame += next;
  return frame + repeat;
}

}  // namespace

std::int16_t SlotOf(std::string_view code, std::int16_t protoKind, const ProtocolParams& params) {
  return IsSentAsRc6(code, protoKind, params) && !HasPatternsOfRc6(params) ? kRc6Slot : params.SENDPLS;
}

std::string BuildSendBits(std::string& code, std::int16_t protoKind, ProtocolParams& params,
                          bool& rc5Toggle) {
  const std::string_view way = WayOf(code, params.SENDAS);
  const bool isRc6 = IsSentAsRc6(code, protoKind, params);
  const ProtocolParams sent = isRc6 ? WithPatternsOfRc6(params) : params;
  if (const std::size_t slots = LengthBound(code, way, sent); slots > kMostSlots) {
    throw std::length_error("The code would be sent as up to " + std::to_string(slots) + " slots, of which " +
                            std::to_string(kMostSlots) +
                            " can be sent. Shorten the code, or BITG, BIT0 and BIT1 of its protocol.");
  }
  if (IsSentInTurns(code, way) && !HasPulseDistances(params)) {
    throw std::invalid_argument(
        "The two frames of this code are of pulse distances, which BIT0 and BIT1 of its "
        "protocol do not send. Learn it in a protocol such as NEC.");
  }
  params.BitTail = BitTailOf(protoKind);
  if (IsSentInTurns(code, way)) return TurnSlots(code, way, params);
  if (protoKind == kRc5 && !isRc6) WriteToggle(code, rc5Toggle);
  if (isRc6) rc5Toggle = !rc5Toggle;
  const std::string body = isRc6 ? Rc6Halves(code, rc5Toggle, sent.BIT1, sent.BIT0) : FrameBody(code, params);
  return WithRepeats(sent.BITG + body, RepeatSlots(body, sent), sent);
}

std::string PadToBytes(std::string slots) {
  const std::size_t odd = slots.size() % kBitsPerByte;
  if (odd > 0) slots.append(kBitsPerByte - odd, '0');
  return slots;
}

std::string BitsToChars(std::string_view bits) {
  std::string chars((bits.size() + kBitsPerByte - 1) / kBitsPerByte, '\0');
  for (std::size_t i = 0; i < bits.size(); ++i) {
    const unsigned bit = (bits[i] == '1' ? 0x80U : 0U) >> i % kBitsPerByte;
    chars[i / kBitsPerByte] = static_cast<char>(static_cast<unsigned char>(chars[i / kBitsPerByte]) | bit);
  }
  return chars;
}

std::string CaptureOfSlots(std::string_view slots, std::int32_t pulse) {
  const double rounded = static_cast<double>(pulse) / kNominalSampleTime + 0.5;
  const auto width = static_cast<std::size_t>(std::clamp(rounded, 0.0, double{kMostSamples}));
  std::string samples;
  for (const char slot : slots) {
    if (samples.size() >= kMostSamples) break;
    samples.append(width, slot);
  }
  samples.append(width, '0');
  samples.resize(std::min(samples.size(), kMostSamples));
  return BitsToChars(samples);
}

}  // namespace keplo
