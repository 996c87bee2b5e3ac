// history_examples.h: what the history gate is shown of clips, and what is wanted of it at each moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "train/feature_track.h"

namespace stopngo {

/// Moments of clips that have a history, and of which the labels say whether an alarm would be right.
struct HistoryExamples {
  std::vector<float> quantities;    ///< kHistoryInputs a moment
  std::vector<std::uint8_t> right;  ///< 1 where it would be

  [[nodiscard]] std::size_t Count() const { return right.size(); }
  [[nodiscard]] std::size_t RightCount() const;
};

/// The moments of all tracks, in their order.
HistoryExamples ExamplesOf(std::span<const FeatureTrack> tracks);

}  // namespace stopngo
