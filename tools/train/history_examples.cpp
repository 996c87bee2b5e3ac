// history_examples.cpp: what the history gate is shown of clips, and what is wanted of it at each moment.
#include "train/history_examples.h"

#include <algorithm>
#include <array>

#include "host/gates/history.h"

namespace stopngo {
namespace {

enum class Moment { kRight, kFalse, kNothing };

/// What an alarm after the pair would be; nothing: it would be early, or nobody says.
Moment MomentAt(const FeatureTrack& track, std::size_t pair) {
  for (const DepartureWindow& departure : track.departures) {
    if (pair < departure.begin || pair >= departure.end) continue;
    return pair < departure.begin + kEarlyPairs ? Moment::kNothing : Moment::kRight;
  }
  return track.quiet[pair] != 0 ? Moment::kFalse : Moment::kNothing;
}

/// Adds the moments of one track.
void AddMoments(const FeatureTrack& track, HistoryExamples& examples) {
  const std::span<const std::int8_t> histograms(track.histograms);
  std::array<PairMotion, kHistoryPairs> pairs{};
  std::array<float, kHistoryInputs> quantities{};
  for (std::size_t i = 0; i < track.Frames(); ++i) {
    std::ranges::move_backward(pairs.begin(), pairs.end() - 1, pairs.end());
    pairs.front() = MotionOf(histograms.subspan(i * track.features, track.features), track.columns);
    const Moment moment = MomentAt(track, i);
    // While the history is too short the gate is closed whatever its network says.
    if (i + 1 < kHistoryPairs || moment == Moment::kNothing) continue;
    HistoryQuantities(pairs, quantities);
    examples.quantities.insert(examples.quantities.end(), quantities.begin(), quantities.end());
    examples.right.push_back(moment == Moment::kRight ? 1 : 0);
  }
}

}  // namespace

std::size_t HistoryExamples::RightCount() const {
  return static_cast<std::size_t>(std::ranges::count(right, 1));
}

HistoryExamples ExamplesOf(std::span<const FeatureTrack> tracks) {
  HistoryExamples examples;
  for (const FeatureTrack& track : tracks) AddMoments(track, examples);
  return examples;
}

}  // namespace stopngo
