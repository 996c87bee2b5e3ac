// clip_passes.h: a clip's pictures, gone through once for everything that follows from them.
#pragma once

#include "clips/clip.h"
#include "features/clip_features.h"
#include "host/module/module.h"
#include "host/settings/settings.h"

namespace stopngo {

/// What is chosen of a clip. The histograms are those that the module's own frame path makes. Looks after the first may
/// be mirrored left to right, handed over at another rate, smoothed, magnified, and look beside the region. Throws
/// Failure.
ClipFeatures CollectFeatures(const Module& module, const Settings& settings, const Clip& clip,
                             const FeatureChoice& choice);

}  // namespace stopngo
