// open_sink.h: opens an output for pictures, by the ending of its name.
#pragma once

#include <memory>

#include "video/sink.h"

namespace stopngo {

/// Throws Failure naming the path and the reason. file: that of the path; it has to outlive the sink.
std::unique_ptr<VideoSink> OpenSink(const SinkOptions& options, OutputFile& file);

}  // namespace stopngo
