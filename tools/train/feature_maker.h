// feature_maker.h: makes the files of a folder of features.
#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "features/clip_features.h"
#include "features/feature_plan.h"
#include "host/module/module.h"
#include "host/settings/settings.h"

namespace stopngo {

/// Makes the files that are not there yet; gives how many. One that is there and is not what it would be made to be is
/// refused before any work. The bytes are the same for any number of jobs. total: called once with the clips to
/// come; step: after each, one call at a time. Throws Failure.
std::size_t MakeFeatures(const Module& module, const Settings& settings, const FeatureChoice& choice,
                         std::span<const PlannedFile> files, int jobs,
                         const std::function<void(std::size_t)>& total, const std::function<void()>& step);

}  // namespace stopngo
