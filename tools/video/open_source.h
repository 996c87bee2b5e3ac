// open_source.h: opens an input and applies the wanted size and rate.
#pragma once

#include <memory>

#include "video/frame_source.h"

namespace stopngo {

/// Throws Failure naming the input.
std::unique_ptr<FrameSource> OpenSource(const SourceOptions& options);

}  // namespace stopngo
