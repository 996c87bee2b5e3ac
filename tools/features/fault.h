// fault.h: whether kept features are what is asked for.
#pragma once

#include <optional>
#include <string_view>

#include "clips/clip.h"
#include "features/clip_features.h"
#include "features/feature_file.h"
#include "host/common/failure.h"
#include "host/settings/settings.h"

namespace stopngo {

/// What a file has of a clip, or why that will not do.
struct FoundFeatures {
  ClipFeatures features;
  std::optional<Failure> fault;
};

/// record: of the file, with the clip's key. The fault is one of wrong usage where the features would do for other
/// options. Throws Failure where the file is damaged.
FoundFeatures FindIn(const FeatureFile& file, std::string_view record, const Clip& clip,
                     const Settings& settings, const FeatureChoice& choice);

}  // namespace stopngo
