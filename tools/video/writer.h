// writer.h: what OpenSink chooses from.
#pragma once

#include <memory>

#include "video/sink.h"

namespace stopngo {

std::unique_ptr<VideoSink> OpenY4mSink(const SinkOptions& options, OutputFile& file);

/// A sink that writes through FFmpeg. Only built with FFmpeg.
std::unique_ptr<VideoSink> OpenFfmpegSink(const SinkOptions& options, OutputFile& file);

}  // namespace stopngo
