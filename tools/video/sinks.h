// sinks.h: what OpenSink chooses from.
#pragma once

#include <memory>

#include "video/sink.h"

namespace stopngo {

/// Frames a second as files keep them.
struct FrameRate {
  int numerator = 0;
  int denominator = 1;
};

/// The ratio that is meant by a decimal number: 29.97 is 30000/1001, 12.5 is 25/2.
FrameRate RationalRate(double fps);

/// A sink that writes through FFmpeg. Only built with FFmpeg.
std::unique_ptr<VideoSink> OpenFfmpegSink(const SinkOptions& options);

}  // namespace stopngo
