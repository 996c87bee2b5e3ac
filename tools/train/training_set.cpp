// training_set.cpp: clips turned into feature tracks, each looked at in several ways.
#include "train/training_set.h"

#include <cstddef>
#include <mutex>

#include "base/parallel.h"
#include "host/common/failure.h"
#include "train/clip_passes.h"

namespace stopngo {
namespace {

/// The first entries of histograms that are longer.
FeatureTrack TrackOf(const View& view, std::size_t features) {
  FeatureTrack track;
  track.features = features;
  track.columns = view.columns;
  track.histograms.reserve(view.Pairs() * features);
  for (std::size_t pair = 0; pair < view.Pairs(); pair++) {
    const auto histogram = std::span(view.histograms).subspan(pair * kChunkCapacity, features);
    track.histograms.insert(track.histograms.end(), histogram.begin(), histogram.end());
  }
  return track;
}

/// All looks at a clip; tracks has room for them.
void FillTracks(const ClipFeatures& clip, std::size_t features, std::span<FeatureTrack> tracks) {
  std::size_t next = 0;
  for (const Pass& pass : clip.looks) {
    // The first frame is compared with none.
    const std::vector<double> times_s(pass.times_s.begin() + (pass.times_s.empty() ? 0 : 1),
                                      pass.times_s.end());
    for (const View& view : pass.views) {
      if (next == tracks.size()) return;
      tracks[next] = TrackOf(view, features);
      SetAims(tracks[next++], times_s, clip.labels);
    }
  }
}

}  // namespace

std::vector<FeatureTrack> CollectTracks(const Module& module, const Settings& settings,
                                        std::span<const Clip> clips, const Looks& looks, int jobs,
                                        const std::function<void()>& step) {
  const auto count = static_cast<std::size_t>(looks.count);
  const auto features = static_cast<std::size_t>(settings.features);
  const FeatureChoice choice{.evaluation = false, .looks = looks.count, .seed = looks.seed};
  std::vector<FeatureTrack> tracks(clips.size() * count);
  std::mutex stepping;
  InParallel(clips.size(), jobs, [&](std::size_t index) {
    const Clip& clip = clips[index];
    try {
      const ClipFeatures found = looks.stored != nullptr ? looks.stored->Find(clip, settings, choice)
                                                         : CollectFeatures(module, settings, clip, choice);
      FillTracks(found, features, std::span(tracks).subspan(index * count, count));
    } catch (const Failure& failure) {
      throw NamingClip(clip, failure);
    }
    const std::lock_guard lock(stepping);
    step();
  });
  return tracks;
}

}  // namespace stopngo
