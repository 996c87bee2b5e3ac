// live_kind.h: which inputs are live, and how each is to be read.
#pragma once

#include "live/live_input.h"
#include "video/frame_source.h"

namespace stopngo {

/// Whether an input gives its frames when they come, and not when they are asked for: cameras, and streams by their
/// protocol. Pipes do not tell.
bool IsLive(const SourceOptions& options);

/// limits: as the user wants them, with what follows from the input: whether it ends, can be opened anew, and is to be
/// held back to its own pace.
LiveLimits LimitsFor(const SourceOptions& options, LiveLimits limits);

}  // namespace stopngo
