#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "broker/refusal_tally.h"
#include "line/node_line.h"
#include "line/rooms/room_map.h"
#include "line/rooms/room_messages.h"
#include "signal/protocol_params.h"

namespace keplo {

/// Receivers and senders of other rooms, which a broker joins: each message is a whole press, and its topic
/// says from which room. In the place of zone hardware the line answers with the number of that room.
class RoomLine : public NodeLine {
 public:
  /// A press that nobody has taken for so long is no news any more.
  static constexpr std::chrono::seconds kFresh{2};

  RoomLine(DeviceCalls& calls, RoomMap rooms, OpenRoomMessages open, const std::int16_t& receiverKind,
           LineOptions options, TellUser tell);

  std::string WhyNot() const override;
  LineLosses Losses() const override { return {}; }
  std::optional<int> ModemLines() override { return std::nullopt; }
  int WakeDescriptor() override { return messages_ ? messages_->WakeDescriptor() : -1; }
  void Forget() override;

  void SetMode(std::int32_t /*mode*/) override {}
  void DTR(std::int32_t /*state*/) override {}
  void RTS(std::int32_t /*state*/) override {}
  void TXD(std::int32_t /*state*/) override {}
  void SetCarrier(std::int32_t hertz) override { carrier_ = hertz; }
  /// Takes the question of which room the last press came from, and the choice of one to send to.
  void SendChr(char character) override;
  std::int32_t ReadChr(char& character) override;
  /// Waits until the receivers can be heard, or it is known why they cannot.
  void WaitUntilHeard(std::chrono::milliseconds longest);
  /// Ends early when a press waits: ten rooms do not wait for each other.
  void uDelay(std::int32_t microseconds) override;
  /// Left out when a press waits.
  void SpeakBeep(std::int32_t frequency, std::int32_t duration) override;

 protected:
  bool IsOpen() const override { return messages_ != nullptr; }
  bool OpenDevice(Refusal& refusal) override;
  void CloseDevice() override;
  void NoticeLoss() override { TakeMessages(); }
  std::string Warning(Use use) const override;
  bool SignalWaits() override;
  bool Capture(std::span<char> buffer, std::int32_t delay) override;
  void WaitForNews(Time until) override;
  bool Send(std::string_view bytes, std::chrono::microseconds slot, std::int32_t interfaceType) override;

 private:
  struct HeardPress {
    PulseTrain Train;
    SignalOrigin Origin;
  };

  void TakeMessages();
  void Take(const RoomMessage& message);
  bool IsEcho(const RoomMessage& message, std::string_view room) const;
  int PlaceOf(const std::string& topic);

  const RoomMap rooms_;
  const OpenRoomMessages open_;
  const LineOptions options_;
  broker::RefusalTally refused_;
  std::unique_ptr<RoomMessages> messages_;
  std::deque<HeardPress> heard_;
  std::map<std::string, int> places_;  // by topic
  int lastPlace_ = 0;
  std::optional<char> answer_;  // of the zone hardware that there is none of
  int sendTo_ = 0;              // number of the room that was chosen last
  std::int32_t carrier_ = kUsualCarrier;
  std::string echoRoom_;  // in which we have sent last
  Time echoFrom_{0}, echoUntil_{0};
  bool justSent_ = false;
};

}  // namespace keplo
