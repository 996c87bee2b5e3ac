// clip_features.h: what is kept of a clip in its pictures' stead: all that a detector's decisions follow from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/label.h"
#include "host/gates/gates.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {

/// Of a pair of frames, for detectors that do without the histogram.
struct PairSignals {
  double difference = 0;  ///< mean absolute difference, grey levels
  double flow = 0;        ///< mean motion downwards, pixels
};

/// What a detector that analyses every frame made of frames that follow one another.
struct View {
  std::uint8_t columns = 0, rows = 0;   ///< of cells
  std::vector<std::int8_t> histograms;  ///< kChunkCapacity entries a pair, those behind the last cell 0
  /// Where decisions follow from it, not only a training: of every frame, and of every pair.
  std::vector<PixelFigures> pixels;
  std::vector<PairSignals> signals;

  [[nodiscard]] std::size_t Pairs() const { return histograms.size() / kChunkCapacity; }
};

/// The frames of a clip that were handed over at one rate.
struct Pass {
  double fps = 0;               ///< as their source tells it
  std::vector<double> times_s;  ///< of all frames
  std::vector<View> views;      ///< of the pairs of each frame with the one before
};

struct ClipFeatures {
  std::string key;                ///< see ClipKeys
  std::vector<LabelSpan> labels;  ///< a scene's own; of a recording, the manifest's
  bool damaged_allowed = false;   ///< the recording was taken as far as it goes
  std::uint64_t looks_seed = 0;   ///< that the looks after the first were drawn from
  std::optional<Pass>
      evaluation;           ///< a view a filter, in the order of their numbers; with pixels and signals
  std::vector<Pass> looks;  ///< for a training: the views of all of them are its looks
};

/// What is kept, or asked for.
struct FeatureChoice {
  bool evaluation = false;
  int looks = 0;           ///< how many
  std::uint64_t seed = 0;  ///< of the looks; a clip's own is as much more as its number

  bool operator==(const FeatureChoice&) const = default;
};

}  // namespace stopngo
