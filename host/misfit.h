// misfit.h: what cannot work, told before the module is asked or after it refused.
#pragma once

#include <string>

#include "host/common/luma.h"
#include "vel_stopngo.h"

namespace stopngo {

/// Throws Failure when the frames handed over are not as large as the settings announce: the module, which is
/// told no size with a frame, would read past them.
void CheckFrameSize(const VEL_STOPNGO_CTX& context, const FrameFormat& frames);

/// Throws Failure when the module could not take a weights file's path, or the file is no network of the
/// counts in force.
void CheckWeights(const std::string& path, const VEL_STOPNGO_CTX& context);

/// Why a frame was refused: the geometry that does not fit it.
std::string MisfitOf(const VEL_STOPNGO_CTX& context);

}  // namespace stopngo
