// reader.h: what OpenSource chooses from: readers that give frames as the input has them.
#pragma once

#include <memory>

#include "video/frame_source.h"

namespace stopngo {

/// No plane is larger than this many pixels a side: a damaged header must not make anybody allocate more.
inline constexpr int kMaximumSide = 16384;
/// For inputs that do not tell their rate.
inline constexpr double kUnknownRate = 25;

/// Y4M (8 bits, or monochrome) or, with a raw size, raw luma; from a file or standard input.
std::unique_ptr<FrameSource> OpenPlain(const SourceOptions& options);
/// Whether a file starts as Y4M does.
bool IsY4m(const std::string& path);

/// Anything that FFmpeg reads. Only built with FFmpeg.
std::unique_ptr<FrameSource> OpenFfmpeg(const SourceOptions& options);

}  // namespace stopngo
