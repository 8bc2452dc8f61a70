#pragma once

#include <span>
#include <string>

#include "doubles/dice.h"
#include "formats/remote.h"

namespace keplo::bench {

using tests::Dice;

/// A press on air: lengths without anything that a receiver does to them.
struct PressOnAir {
  PulseTrain Lengths;
  std::string Code;  // as the second look tells it
};

/// Presses of remotes of one protocol, with random codes.
struct PressFamily {
  const char* Name;
  PressOnAir (*Make)(Dice& dice, int frames);
};

std::span<const PressFamily> PressFamilies();

/// Frames with so much silence after each but the last.
PulseTrain JoinFrames(std::span<const PulseTrain> frames, int gap);

/// A frame of pulse distance, microseconds.
/// @param lead mark and space of the leader; both 0 for none
PulseTrain DistanceFrame(Pulse lead, int mark, int zero, int one, const std::string& digits);

/// What a receiver hands on.
/// @param excess of marks, jitter the standard deviation of each edge; microseconds
/// @param clock by which the remote is slow, thousandths
PulseTrain Received(const PulseTrain& onAir, int excess, int jitter, int clock, Dice& dice);
/// The same with what recordings of real remotes show.
PulseTrain ReceivedAsReal(const PulseTrain& onAir, Dice& dice);

}  // namespace keplo::bench
