// open_sink.h: opens an output for pictures, by the ending of its name.
#pragma once

#include <memory>

#include "video/sink.h"

namespace stopngo {

/// Throws Failure naming the path and the reason.
std::unique_ptr<VideoSink> OpenSink(const SinkOptions& options);

}  // namespace stopngo
