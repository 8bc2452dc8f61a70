#include "formats/trade/lirc_remote.h"

#include <algorithm>
#include <optional>

namespace keplo::trade {

namespace {

constexpr int kMostLircBits = 64;  // of each field, as the sender has them

/// Whether two lengths are one, up to what learning does to them.
bool AreAlike(int left, int right) { return 5 * std::max(left, right) <= 7 * std::min(left, right); }

std::string FieldDigits(std::uint64_t value, int bits, bool reverse) {
  std::string digits;
  for (int bit = bits - 1; bit >= 0; --bit)
    digits += (value >> static_cast<unsigned>(bit) & 1U) != 0 ? '1' : '0';
  if (reverse) std::reverse(digits.begin(), digits.end());
  return digits;
}

/// Bits of a mask that counts from the lowest of all digits, as marks below the digits.
std::string MaskDigits(std::uint64_t mask, int bitFromLeft, int bits) {
  std::string marks(static_cast<std::size_t>(bits), '0');
  for (int bit = 0; bit < std::min(bits, kMostLircBits); ++bit) {
    if ((mask >> static_cast<unsigned>(bit) & 1U) != 0) marks[static_cast<std::size_t>(bits - 1 - bit)] = '1';
  }
  if (bitFromLeft > 0 && bitFromLeft <= bits) marks[static_cast<std::size_t>(bitFromLeft - 1)] = '1';
  return marks;
}

std::string Flipped(std::string digits, std::string_view marks) {
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (marks[i] == '1') digits[i] = digits[i] == '1' ? '0' : '1';
  }
  return digits;
}

std::string WithToggle(std::string digits, std::string_view marks, char state) {
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (marks[i] == '1') digits[i] = state;
  }
  return digits;
}

/// Sends the digits of a remote as its own program does.
class LircSender {
 public:
  explicit LircSender(const LircRemote& remote) : remote_(remote) {}

  /// @param reversed whether the value itself is turned; its own program turns the first of a key alone
  std::string DigitsOf(std::uint64_t value, bool reversed) const {
    return FieldDigits(remote_.PreData, remote_.PreBits, remote_.Reverse) +
           FieldDigits(value, remote_.Bits, reversed) +
           FieldDigits(remote_.PostData, remote_.PostBits, remote_.Reverse);
  }

  std::string ToggleMarks() const {
    return MaskDigits(remote_.ToggleBitMask, remote_.ToggleBit, remote_.AllBits());
  }
  std::string RepeatMarks() const {
    return MaskDigits(remote_.ToggleMask | remote_.RepeatMask, 0, remote_.AllBits());
  }

  /// A frame from its first mark to its last.
  PulseTrain Frame(std::string_view digits, bool repeat) const {
    TrainWriter train;
    if (!repeat || !remote_.NoHeadRepeat) {
      train.Mark(remote_.Header.Mark);
      train.Space(remote_.Header.Space);
    }
    train.Mark(remote_.Lead);
    const auto pre = static_cast<std::size_t>(remote_.PreBits), code = static_cast<std::size_t>(remote_.Bits);
    Send(digits, 0, pre, train);
    if (pre > 0) SendPair(remote_.Pre, train);
    Send(digits, pre, pre + code, train);
    if (remote_.PostBits > 0) SendPair(remote_.Post, train);
    Send(digits, pre + code, digits.size(), train);
    train.Mark(remote_.Trail);
    if (!repeat || !remote_.NoFootRepeat) {
      train.Space(remote_.Foot.Space);
      train.Mark(remote_.Foot.Mark);
    }
    return train.TakeMarkLast();
  }

 private:
  static void SendPair(const Pulse& pulse, TrainWriter& train) {
    if (pulse.Mark <= 0 || pulse.Space <= 0) return;
    train.Mark(pulse.Mark);
    train.Space(pulse.Space);
  }

  void Send(std::string_view digits, std::size_t first, std::size_t end, TrainWriter& train) const {
    const std::string doubled = MaskDigits(remote_.Rc6Mask, 0, remote_.AllBits());
    for (std::size_t i = first; i < end; ++i) {
      const bool one = digits[i] == '1';
      const int times = remote_.Rc6 && doubled[i] == '1' ? 2 : 1;
      const Pulse& pulse = one ? remote_.One : remote_.Zero;
      const bool spaceFirst = remote_.Rc5 || remote_.Rc6 ? one : remote_.SpaceFirst;
      if (spaceFirst) train.Space(times * pulse.Space);
      train.Mark(times * pulse.Mark);
      if (!spaceFirst) train.Space(times * pulse.Space);
    }
  }

  const LircRemote& remote_;
};

bool HasShortRepeat(const LircRemote& remote) { return remote.Repeat.Mark > 0 && remote.Repeat.Space > 0; }

/// With a header or a lead ahead a short repeat is none of the forms that a section can send.
bool HasHeadedRepeat(const LircRemote& remote) {
  return HasShortRepeat(remote) && ((remote.RepeatHeader && remote.Header.Mark > 0) || remote.Lead > 0);
}

/// What the time of a frame leaves out: a header that repeats have not.
int UncountedTime(const LircRemote& remote) {
  return remote.ConstLength && remote.NoHeadRepeat ? remote.Header.Mark + remote.Header.Space : 0;
}

Repeat RepeatOf(const LircRemote& remote) {
  Repeat again;
  again.Gap = remote.Gap + UncountedTime(remote);
  again.FromStart = remote.ConstLength;
  again.Kind = remote.NoHeadRepeat ? RepeatKind::Body : RepeatKind::Frame;
  if (HasShortRepeat(remote)) {
    again.Kind = HasHeadedRepeat(remote) ? RepeatKind::None : RepeatKind::Short;
    again.ShortSync = remote.Repeat;
  }
  return again;
}

/// The coding of digits that are sent one pulse each, with nothing between them.
std::optional<Coding> PlainCoding(const LircRemote& remote) {
  const bool plain = !remote.Rc5 && !remote.Rc6 && !remote.SpaceFirst && remote.Lead == 0 &&
                     remote.Foot.Mark == 0 &&
                     (remote.PreBits == 0 || remote.Pre.Mark == 0 || remote.Pre.Space == 0) &&
                     (remote.PostBits == 0 || remote.Post.Mark == 0 || remote.Post.Space == 0);
  const bool marksAlike = AreAlike(remote.One.Mark, remote.Zero.Mark);
  const bool spacesAlike = AreAlike(remote.One.Space, remote.Zero.Space);
  if (!plain || marksAlike == spacesAlike || (spacesAlike && remote.Trail > 0)) return std::nullopt;
  const bool swapped = marksAlike ? remote.One.Space < remote.Zero.Space : remote.One.Mark < remote.Zero.Mark;
  Coding code;
  code.Line = marksAlike ? LineCode::Distance : LineCode::Width;
  code.Sync = remote.Header;
  code.Zero = swapped ? remote.One : remote.Zero;
  code.One = swapped ? remote.Zero : remote.One;
  if (marksAlike) code.Tail = remote.Trail > 0 ? remote.Trail : code.Zero.Mark;
  code.Unit = UnitOf(code);
  return code;
}

std::optional<CodedSignal> PlainSignal(const LircRemote& remote, std::string digits) {
  const std::optional<Coding> code = PlainCoding(remote);
  if (!code) return std::nullopt;
  // The space of a last digit that no mark closes is lost in the gap.
  if (code->Line == LineCode::Distance && remote.Trail == 0) digits.pop_back();
  const bool swapped = code->Zero == remote.One && !(code->Zero == remote.Zero);
  if (swapped) digits = Flipped(digits, std::string(digits.size(), '1'));
  const std::string toggles = LircSender(remote).ToggleMarks();
  CodedSignal signal{*code, RepeatOf(remote), std::move(digits), std::nullopt};
  if (const std::size_t toggle = toggles.find('1'); toggle < signal.Digits.size()) signal.Toggle = toggle;
  return signal;
}

/// RC5: the lead is the half of the first digit that is seen.
std::optional<CodedSignal> Rc5Signal(const LircRemote& remote, const PulseTrain& frame) {
  if (!remote.Rc5) return std::nullopt;
  std::optional<CodedSignal> signal = ReadDigits(frame);
  if (!signal || signal->Code.Line != LineCode::Biphase) return std::nullopt;
  signal->Again = RepeatOf(remote);
  return signal;
}

std::string WhyNone(const LircRemote& remote, const LircCode& code) {
  if (!code.Fault.empty()) return code.Fault;
  if (!remote.Fault.empty() && !remote.Raw) return remote.Fault;
  if (!remote.Driver.empty())
    return "its codes are those of the device " + remote.Driver + ", without lengths";
  if (remote.Raw) return code.Lengths.empty() ? "there are no lengths" : "";
  if (!remote.Foreign.empty()) return "the flag " + remote.Foreign + " is not known";
  if (remote.One.Mark == 0 && remote.Zero.Mark == 0)
    return "the remote has no \"one\" and \"zero\", so no lengths";
  if (!remote.Rc5 && !remote.Rc6 && remote.One == remote.Zero)
    return R"("one" and "zero" are the same, and no flag tells them apart)";
  if (remote.Bits < 1 || remote.Bits > kMostLircBits || remote.PreBits > kMostLircBits ||
      remote.PostBits > kMostLircBits) {
    return "found " + std::to_string(remote.Bits) + " bits, expected 1 to " + std::to_string(kMostLircBits);
  }
  return {};
}

void Append(PulseTrain& press, int gap, bool fromStart, const PulseTrain& frame,
            PulseTrain::size_type& frameStart) {
  if (!press.empty()) {
    int time = 0;
    for (auto i = frameStart; i < press.size(); ++i) time = std::min(time + press[i], kLongestPulse);
    constexpr int kShortestGap = 10'000;  // microseconds; a gap that the frame outlasts is none
    press.push_back(std::max(fromStart ? gap - time : gap, kShortestGap));
  }
  frameStart = press.size();
  press.insert(press.end(), frame.begin(), frame.end());
}

}  // namespace

std::string TakeLircCode(const LircRemote& remote, const LircCode& code, RemoteKey& key) {
  if (std::string why = WhyNone(remote, code); !why.empty()) return why;
  key.Carrier = remote.Carrier;
  if (remote.Raw) {
    key.Lengths = code.Lengths;
    key.Gap = remote.Gap;
    key.GapFromStart = remote.ConstLength && remote.Gap > 0;
    return {};
  }
  const LircSender sender(remote);
  const std::string digits = sender.DigitsOf(code.Values.front(), remote.Reverse);
  const std::string turned = sender.RepeatMarks();
  const bool single = code.Values.size() == 1 && turned.find('1') == std::string::npos;
  const std::string toggles = sender.ToggleMarks();
  if (single && HasHeadedRepeat(remote))
    key.Lost = "a short repeat with a header or a lead ahead is not kept";
  // With several that turn over together it is the two forms that tell them.
  if (single && std::count(toggles.begin(), toggles.end(), '1') <= 1) {
    key.Coded = PlainSignal(remote, digits);
    if (!key.Coded) key.Coded = Rc5Signal(remote, sender.Frame(digits, false));
    if (key.Coded) return {};
  }
  const auto press = [&](char toggle) {
    PulseTrain lengths;
    PulseTrain::size_type start = 0;
    const auto append = [&](const std::string& own, bool isFirst) {
      // The further values of a key are sent as repeats.
      const int gap = remote.Gap + (start == 0 ? UncountedTime(remote) : 0);
      Append(lengths, gap, remote.ConstLength, sender.Frame(WithToggle(own, toggles, toggle), !isFirst),
             start);
    };
    for (const std::uint64_t value : code.Values) {
      if (lengths.size() > kMostLengths) break;
      append(sender.DigitsOf(value, lengths.empty() && remote.Reverse), lengths.empty());
    }
    if (turned.find('1') != std::string::npos) append(Flipped(digits, turned), false);
    return lengths;
  };
  // Counted from its start it would be that of the last frame alone.
  if (!remote.ConstLength) key.Gap = remote.Gap;
  key.Described = single ? RepeatOf(remote) : Repeat{};
  // Its own program begins with a toggle of 1, whatever the code has there.
  key.Lengths = press('1');
  if (toggles.find('1') != std::string::npos) key.Toggled = press('0');
  return key.Lengths.empty() ? "it has no mark" : "";
}

}  // namespace keplo::trade
