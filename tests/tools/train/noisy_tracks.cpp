// noisy_tracks.cpp: tracks of noise in which departures can be told.
#include "noisy_tracks.h"

#include "base/label.h"
#include "base/random.h"

namespace stopngo::test {
namespace {

constexpr std::size_t kFeatures = 8;
constexpr double kRate = 8;

}  // namespace

FeatureTrack NoisyTrack(std::uint64_t seed, bool departs) {
  Random random(seed, 1);
  FeatureTrack track;
  track.features = kFeatures;
  std::vector<double> times_s;
  constexpr double kStart_s = 4;
  for (int frame = 1; frame <= 88; frame++) {
    const double time_s = frame / kRate;
    times_s.push_back(time_s);
    for (std::size_t i = 0; i < kFeatures; i++) {
      const bool moves = departs && i >= kFeatures / 2 && time_s > kStart_s;
      track.histograms.push_back(static_cast<std::int8_t>(random.Below(9) + (moves ? 12U : 0U)));
    }
  }
  std::vector<LabelSpan> labels{{0, 11, Activity::kStill}};
  if (departs) {
    labels = {
        {0, kStart_s, Activity::kStill}, {kStart_s, 7, Activity::kLeadDeparts}, {7, 11, Activity::kStill}};
  }
  SetAims(track, times_s, labels);
  return track;
}

std::vector<FeatureTrack> Tracks(std::uint64_t seed, int count) {
  std::vector<FeatureTrack> tracks;
  tracks.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; i++) {
    tracks.push_back(NoisyTrack(seed + static_cast<std::uint64_t>(i), i % 2 == 0));
  }
  return tracks;
}

LossOptions Options() {
  LossOptions options;
  options.hiddens = kHiddens;
  options.decay = 1e-3;
  return options;
}

}  // namespace stopngo::test
