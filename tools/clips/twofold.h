// twofold.h: clips that come twice.
#pragma once

#include <vector>

#include "clips/clip.h"

namespace stopngo {

/// The first that has come before: the same recording, by whatever path, or the same scene, with the same region
/// and rate. Null when there is none.
const Clip* ComesTwice(const std::vector<const Clip*>& clips);

}  // namespace stopngo
