// training_set.h: clips turned into feature tracks, each looked at in several ways.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "clips/clip.h"
#include "features/feature_folder.h"
#include "host/detector.h"
#include "host/settings/settings.h"
#include "train/feature_track.h"

namespace stopngo {

struct Looks {
  int count = 1;                          ///< tracks from each clip; the first is the clip as it stands
  std::uint64_t seed = 1;                 ///< of how the others differ
  const FeatureFolder* stored = nullptr;  ///< in the stead of the clips' pictures
};

/// The tracks of all clips, those of one clip side by side, in the clips' order. A look after the first may
/// be mirrored left to right, handed over at another rate, smoothed, magnified, and looks beside the
/// region. The histograms are those that the module's own frame path made. step: called after each clip,
/// one call at a time.
std::vector<FeatureTrack> CollectTracks(const Module& module, const Settings& settings,
                                        std::span<const Clip> clips, const Looks& looks, int jobs,
                                        const std::function<void()>& step);

}  // namespace stopngo
