#include "line/rooms/room_line.h"

#include <algorithm>
#include <cerrno>
#include <numeric>
#include <utility>

#include "failure.h"
#include "line/press_capture.h"
#include "line/rooms/room_press.h"
#include "line/slot_clock.h"
#include "line/zone_answer.h"

namespace keplo {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono_literals::operator""ms;

constexpr char kZoneQuestion = 'P';
constexpr char kAnswerOffset = 64;  // the answer is the command without its highest bit
/// Within this time the receiver of a room reports what we have sent there ourselves.
constexpr auto kSlowestEcho = 500ms;
/// Topics that are kept apart; when there are more, the count begins again.
constexpr std::size_t kMostPlaces = 1000;

std::string NameOfLine(const RoomMap& rooms) { return "mqtt:" + rooms.Filter; }

}  // namespace

RoomLine::RoomLine(DeviceCalls& calls, RoomMap rooms, OpenRoomMessages open, const std::int16_t& receiverKind,
                   LineOptions options, TellUser tell)
    : NodeLine(calls, NameOfLine(rooms), receiverKind, options, std::move(tell)),
      rooms_(std::move(rooms)),
      open_(std::move(open)),
      options_(options),
      refused_("A message on " + rooms_.Filter, "messages on " + rooms_.Filter,
               [this](const std::string& text) { Tell(text); }) {}

std::string RoomLine::WhyNot() const { return messages_ ? messages_->WhyNot() : NodeLine::WhyNot(); }

bool RoomLine::OpenDevice(Refusal& refusal) {
  try {
    if (!open_) throw Failure(ENOTSUP, "There is no way to a broker here.");
    messages_ = open_(rooms_.Filter);
    return true;
  } catch (const Failure& failure) {
    refusal = {failure.what()};
    return false;
  }
}

void RoomLine::CloseDevice() {
  messages_.reset();
  heard_.clear();
}

std::string RoomLine::Warning(Use use) const {
  if (use == Use::Listen || !rooms_.SendTopic.empty()) return {};
  return Node() + " has no sender. Add send:TOPIC to its line in ports.conf.";
}

int RoomLine::PlaceOf(const std::string& topic) {
  if (places_.size() >= kMostPlaces) places_.clear();
  const auto [place, isNew] = places_.try_emplace(topic, lastPlace_ + 1);
  if (isNew) ++lastPlace_;
  return place->second;
}

bool RoomLine::IsEcho(const RoomMessage& message, std::string_view room) const {
  return message.Came >= echoFrom_ && message.Came < echoUntil_ && (echoRoom_.empty() || echoRoom_ == room);
}

void RoomLine::Take(const RoomMessage& message) {
  if (messages_->IsOwn(message.Topic)) return;
  try {
    if (message.Retained) throw Failure(EINVAL, "it is retained, so that nobody knows how old it is");
    PulseTrain train = PressOfMessage(message.Payload, message.Topic);
    const std::string room = rooms_.NameOf(message.Topic);
    if (train.empty() || IsEcho(message, room)) return;
    const auto length = microseconds(std::accumulate(train.begin(), train.end(), std::int64_t{0}));
    const auto end = std::chrono::duration_cast<microseconds>(message.Came);
    heard_.push_back({std::move(train),
                      {PlaceOf(message.Topic), rooms_.NumberOf(room), end - length, end,
                       messages_->IsPublic(message.Topic)}});
  } catch (const Failure& failure) {
    refused_.Count(message.Topic + ": " + failure.what());
  }
}

void RoomLine::TakeMessages() {
  if (!messages_) return;
  const RoomMessages::News news = messages_->Take();
  for (const std::string& words : news.Words) Tell(words);
  for (const RoomMessage& message : news.Messages) Take(message);
  refused_.Count("more came than can be taken", news.Lost);
  const auto oldest = std::chrono::duration_cast<microseconds>(calls_.Now() - kFresh);
  for (; !heard_.empty() && heard_.front().Origin.End < oldest; heard_.pop_front()) {
    refused_.Count("it could not be taken within two seconds");
  }
}

bool RoomLine::SignalWaits() {
  TakeMessages();
  return !heard_.empty();
}

void RoomLine::Forget() {
  TakeMessages();
  // Presses of other rooms come while we send.
  if (!std::exchange(justSent_, false)) heard_.clear();
}

/// A receiver may report a single frame of a press, which is then held like a recorded one.
bool RoomLine::Capture(std::span<char> buffer, std::int32_t delay) {
  if (heard_.empty()) return false;
  LineOptions options = CaptureOptions(delay);
  options.HoldMs = options_.HoldMs;
  HeardPress press = std::move(heard_.front());
  heard_.pop_front();
  origin_ = press.Origin;
  toldLengths_ = press.Train;
  CopySignal(SignalOfPress(Press(std::move(press.Train)), buffer.size(), options), buffer.size() * 8, buffer);
  return true;
}

void RoomLine::WaitForNews(Time until) {
  const Time left = until - calls_.Now();
  if (!messages_ || left.count() <= 0) return;
  pollfd input = {messages_->WakeDescriptor(), POLLIN, 0};
  calls_.Poll(&input, 1, static_cast<int>(std::chrono::ceil<milliseconds>(left).count()));
  TakeMessages();
}

void RoomLine::uDelay(std::int32_t microseconds) {
  constexpr auto kLook = 50ms;  // so long a request to end may wait
  const Time until = calls_.Now() + std::chrono::microseconds(microseconds);
  if (!messages_) return NodeLine::uDelay(microseconds);
  while (calls_.Now() < until && !SignalWaits() && !HeldSignals::Pending()) {
    WaitForNews(std::min<Time>(until, calls_.Now() + kLook));
  }
}

void RoomLine::SpeakBeep(std::int32_t frequency, std::int32_t duration) {
  if (!SignalWaits()) NodeLine::SpeakBeep(frequency, duration);
}

void RoomLine::WaitUntilHeard(milliseconds longest) {
  const Time until = calls_.Now() + longest;
  while (messages_ && messages_->WhyNot().empty() && !messages_->IsUp() && calls_.Now() < until) {
    WaitForNews(until);
  }
}

bool RoomLine::Send(std::string_view bytes, std::chrono::microseconds slot, std::int32_t /*interfaceType*/) {
  justSent_ = true;
  const std::vector<LitSlots> lit = LitSlotsOf(bytes);
  if (rooms_.SendTopic.empty() || lit.empty()) return false;
  const std::optional<std::string> topic = rooms_.SendTopicOf(sendTo_);
  if (!topic) {
    Tell(
        "Which room to send to is not known. Choose its zone (keplo send --zone N, or VEXIL), and name it in "
        "ports.conf with that number.");
    return false;
  }
  echoRoom_ = rooms_.SendTopic == *topic ? std::string() : rooms_.Find(sendTo_)->Name;
  echoFrom_ = calls_.Now();
  if (!messages_->Publish(*topic, MessageOfSignal(lit, slot, carrier_, *topic))) {
    const std::string why = messages_->WhyNot();
    Tell(why.empty() ? "The broker did not take the signal for " + *topic + ". Try again." : why);
    return false;
  }
  const bool whole = SleepUnlessEnded(calls_, calls_.Now() + slot * (bytes.size() * 8));
  echoUntil_ = calls_.Now() + kSlowestEcho;
  return whole;
}

void RoomLine::SendChr(char character) {
  answer_.reset();
  if (character == kZoneQuestion) {
    if (origin_ && origin_->Zone > 0) answer_ = static_cast<char>('0' + origin_->Zone);
    return;
  }
  const auto answer = static_cast<char>(character - kAnswerOffset);
  const int number = ZoneOfAnswer(answer);
  if (number == 0 || !rooms_.SendTopicOf(number)) return;
  sendTo_ = number;
  answer_ = answer;
}

std::int32_t RoomLine::ReadChr(char& character) {
  if (!answer_) return 0;
  character = *std::exchange(answer_, std::nullopt);
  return 1;
}

}  // namespace keplo
