// history_examples.h: what the history gate is shown of clips, and what is wanted of it at each moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "train/feature_track.h"

namespace stopngo {

/// Moments of clips that have a history, and that teach something: those in which an alarm would be false, and those in
/// which it would be right.
struct HistoryExamples {
  std::vector<float> quantities;    ///< kHistoryInputs a moment
  std::vector<std::uint8_t> right;  ///< 1 where it would be

  [[nodiscard]] std::size_t Count() const { return right.size(); }
  [[nodiscard]] std::size_t RightCount() const;
};

/// Pairs after a departure's start that teach nothing: 1 s, at 6 a second. An alarm has hardly come by then, and little
/// has moved: who had to call that a departure would call noise one.
inline constexpr std::size_t kEarlyPairs = 6;

/// The moments of all tracks, in their order.
HistoryExamples ExamplesOf(std::span<const FeatureTrack> tracks);

}  // namespace stopngo
