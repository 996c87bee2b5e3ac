// noisy_tracks.h: tracks of noise in which departures can be told, and a small network's loss over them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "train/alarm_loss.h"
#include "train/feature_track.h"

namespace stopngo::test {

inline constexpr std::size_t kHiddens = 4;

/// Noise, and from the start of a departure a steady upward sum in its second half of features.
FeatureTrack NoisyTrack(std::uint64_t seed, bool departs);

/// Every other one departs.
std::vector<FeatureTrack> Tracks(std::uint64_t seed, int count);

LossOptions Options();

}  // namespace stopngo::test
