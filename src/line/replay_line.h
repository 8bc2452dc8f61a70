#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formats/recording.h"
#include "line/line_clock.h"
#include "line/long_press.h"
#include "line/open_line.h"
#include "line/press_capture.h"
#include "signal/protocol_params.h"
#include "signal/win32_ser.h"

namespace keplo {

/// What was put out on a replay line, in order; of each kind the latest thousand.
struct LineOutput {
  struct Signal {
    std::string Bytes;
    std::int32_t Pulse;  // microseconds
    std::int32_t InterfaceType;
    std::int32_t Carrier = kUsualCarrier;  // Hz
  };
  struct Beep {
    std::int32_t Frequency;  // Hz
    std::int32_t Duration;   // milliseconds
  };

  std::vector<Signal> Signals;
  std::string Characters;
  std::vector<Beep> Beeps;
  // -1 asserted, 0 released
  std::int32_t Dtr = 0;
  std::int32_t Rts = 0;
  std::int32_t Txd = 0;
  std::int32_t Mode = 1;
};

/// A line that plays recorded presses, one a capture, and writes down what is sent.
///
/// Without a clock it plays as fast as it is asked and pauses and beeps take no time. With one, presses
/// follow each other kPressPause apart, captures last as long as the signal, and pauses and beeps are waited
/// for. A press waits until it is captured; none is lost to a monitor that looks away. One that is longer
/// than the monitor's buffer goes on while it does: the next capture takes what is on air then, from the next
/// frame that begins before its eyes.
class ReplayLine : public Win32Ser, public PressSource {
 public:
  /// Silence between the end of a press and the next, when playing against a clock.
  static constexpr std::chrono::milliseconds kPressPause{500};

  /// @param receiverKind 0 DCDStandard, 1 IRMouse; tells the level at which DCD rests. The settings own it: a
  ///        change there changes the receiver of the line at once.
  ReplayLine(std::vector<Recording> recordings, const std::int16_t& receiverKind,
             const LineOptions& options = {});
  ReplayLine(std::vector<Recording> recordings, std::int16_t&& passing,
             const LineOptions& options = {}) = delete;

  /// Plays against a clock from now on.
  void PlayAgainst(std::shared_ptr<LineClock> clock);
  /// Holds the key of the last press down: that press is played once more for each further capture, without a
  /// pause, and lasts longer than any of them.
  /// @param captures after so many in all the key is let go; at least 1
  void HoldLastPress(int captures);
  /// Only these ports are there; all are if there is none among them.
  void SetPorts(std::vector<std::int32_t> ports) { ports_ = std::move(ports); }
  /// Appends answers of the zone hardware, one character each; NUL is a time-out.
  void AnswerWith(const std::string& characters);

  bool Done() const override { return next_ == presses_.size() && !onAir_; }
  const PlayedPress* LastPress() const override { return last_ ? &presses_[*last_].Place : nullptr; }
  /// Without a clock a press takes its time, and the pause before the next one kPressPause.
  std::chrono::microseconds Now() const override { return clock_ != nullptr ? clock_->Now() : ownTime_; }
  const LineOutput& Output() const { return output_; }

  std::int32_t OpenCom(std::int32_t port) override;
  void CloseCom() override {}
  void SetMode(std::int32_t mode) override { output_.Mode = mode; }
  void DTR(std::int32_t state) override { output_.Dtr = state; }
  void RTS(std::int32_t state) override { output_.Rts = state; }
  void TXD(std::int32_t state) override { output_.Txd = state; }
  std::int32_t DCD() override;
  void IRMonitor(std::span<char> buffer, std::int32_t delay) override;
  void IRMonitorN(std::span<char> buffer, std::int32_t delay) override;
  double SampleTime(std::int32_t delay) const override;
  std::int32_t IRRecord(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  std::int32_t IRRecordN(std::span<char> buffer, std::int32_t delay, std::int32_t limit) override;
  void IRSend(std::string_view bytes, std::int32_t pulse, std::int32_t interfaceType) override;
  void SetCarrier(std::int32_t hertz) override { carrier_ = hertz; }
  void SendChr(char character) override { output_.Characters += character; }
  std::int32_t ReadChr(char& character) override;
  std::int16_t CheckZone(char& character) override;
  void uDelay(std::int32_t microseconds) override;
  void SpeakBeep(std::int32_t frequency, std::int32_t duration) override;

 private:
  struct PendingPress {
    PlayedPress Place;
    Press Signal;
  };

  bool Pending();
  void LookAgain(std::chrono::microseconds now);
  void Monitor(std::span<char> buffer, std::int32_t delay);
  void CaptureOnAir(std::span<char> buffer, std::chrono::microseconds bufferTime, LineOptions options);
  bool Held() const { return heldCaptures_ > 0 && next_ + 1 == presses_.size(); }
  void Advance();
  void Capture(std::span<char> buffer, std::int32_t delay);
  void Wait(std::chrono::microseconds duration);

  std::vector<PendingPress> presses_;
  std::size_t next_ = 0;
  std::optional<std::size_t> last_;
  int heldCaptures_ = 0;  // of the last press while its key is held
  const std::int16_t* receiverKind_;
  LineOptions options_;
  std::vector<std::int32_t> ports_;
  std::shared_ptr<LineClock> clock_;
  std::chrono::microseconds nextStart_{0};
  std::optional<LongPress> onAir_;         // a press that goes on when its first capture is full
  std::chrono::microseconds lookedAt_{0};  // when a tick looked at the line last
  bool lookedAway_ = false;                // a capture was taken since
  std::chrono::microseconds ownTime_{0};   // without a clock
  std::deque<char> zoneAnswers_;
  LineOutput output_;
  std::int32_t carrier_ = kUsualCarrier;
};

}  // namespace keplo
