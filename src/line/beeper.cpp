#include "line/beeper.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <utility>

#include "line/slot_clock.h"

namespace keplo {

namespace {

constexpr std::int32_t kRate = 48'000;            // samples a second, which every sound device knows
constexpr unsigned kLatency = 40'000;             // microseconds
constexpr double kVolume = 0.3;                   // of full scale
constexpr double kSoftEdge = 0.003;               // seconds
constexpr std::chrono::milliseconds kSlack{300};  // that a device may take beyond the length of a tone
constexpr std::chrono::milliseconds kLookAtSound{2};
constexpr int kRoomWait = 20;                  // milliseconds between two looks whether to end
constexpr std::int32_t kLongestTone = 10'000;  // milliseconds

/// The library would print lines of its own.
void Quiet(const char* /*file*/, int /*line*/, const char* /*function*/, int /*error*/,
           const char* /*format*/, ...) {}

struct CloseDevice {
  void operator()(snd_pcm_t* device) const { snd_pcm_close(device); }
};
using SoundDevice = std::unique_ptr<snd_pcm_t, CloseDevice>;

/// @return whether what was given to a device is still to be heard
bool StillSounds(snd_pcm_t* device) {
  snd_pcm_sframes_t left = 0;
  return snd_pcm_delay(device, &left) == 0 && left > 0;
}

/// A device that hangs, or fails again and again, must not hold up its program.
/// @return 0 or the library's error number
int Play(DeviceCalls& calls, const std::vector<std::int16_t>& tone, std::chrono::nanoseconds until) {
  const auto goesOn = [&] { return calls.Now() < until && !HeldSignals::Pending(); };
  snd_pcm_t* opened = nullptr;
  // Otherwise the open would wait until another program that has the device ends, and a write or a drain as
  // long as the device likes.
  int error = snd_pcm_open(&opened, "default", SND_PCM_STREAM_PLAYBACK, SND_PCM_NONBLOCK);
  if (error < 0) return error;
  const SoundDevice device(opened);
  error =
      snd_pcm_set_params(opened, SND_PCM_FORMAT_S16, SND_PCM_ACCESS_RW_INTERLEAVED, 1, kRate, 1, kLatency);
  if (error < 0) return error;
  std::size_t played = 0;
  while (played < tone.size() && goesOn()) {
    const snd_pcm_sframes_t count = snd_pcm_writei(opened, tone.data() + played, tone.size() - played);
    if (count == -EAGAIN) {
      snd_pcm_wait(opened, kRoomWait);
      continue;
    }
    error = count < 0 ? snd_pcm_recover(opened, static_cast<int>(count), 1) : 0;
    if (error < 0) return error;
    if (count > 0) played += static_cast<std::size_t>(count);
  }
  error = snd_pcm_drain(opened);
  if (error != -EAGAIN) return std::min(error, 0);
  // Some devices have not even begun by then.
  if (snd_pcm_state(opened) == SND_PCM_STATE_PREPARED) snd_pcm_start(opened);
  while (goesOn() && StillSounds(opened)) calls.SleepUntil(calls.Now() + kLookAtSound);
  return 0;
}

std::string WhySilent(int error) {
  if (error == -EBUSY) {
    return "Beeps are silent: another program has the sound device. They sound again when it ends.";
  }
  return std::string("Beeps are silent: the sound device cannot be used (") + snd_strerror(error) +
         "). Connect one, or join the group audio and log in again.";
}

}  // namespace

std::vector<std::int16_t> MakeTone(std::int32_t frequency, std::int32_t duration, std::int32_t rate) {
  std::vector<std::int16_t> tone(static_cast<std::size_t>(std::int64_t{rate} * duration / 1000));
  const double soft = std::min(kSoftEdge * rate, static_cast<double>(tone.size()) / 2);
  for (std::size_t i = 0; i < tone.size(); ++i) {
    const double fromEdge = static_cast<double>(std::min(i, tone.size() - 1 - i));
    const double loudness = 0.5 - 0.5 * std::cos(std::numbers::pi * std::min(fromEdge / soft, 1.0));
    const double wave = std::sin(2 * std::numbers::pi * frequency * static_cast<double>(i) / rate);
    tone[i] = static_cast<std::int16_t>(std::lround(32'767 * kVolume * loudness * wave));
  }
  return tone;
}

Beeper::Beeper(DeviceCalls& calls, TellUser tell) : calls_(calls), tell_(std::move(tell)) {
  snd_lib_error_set_handler(Quiet);
}

void Beeper::Sound(std::int32_t frequency, std::int32_t duration) {
  duration = std::clamp(duration, 0, kLongestTone);
  const auto end = calls_.Now() + std::chrono::milliseconds(duration);
  const int error = Play(calls_, MakeTone(frequency, duration, kRate), end + kSlack);
  if (error < 0 && tell_ && !std::exchange(told_, true)) tell_(WhySilent(error));
  SleepUnlessEnded(calls_, end);
}

}  // namespace keplo
