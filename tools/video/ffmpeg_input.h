// ffmpeg_input.h: opens what FFmpeg reads: files, cameras, streams. Only used with FFmpeg.
#pragma once

#include <functional>
#include <memory>

#include "video/announced_end.h"
#include "video/ffmpeg.h"
#include "video/frame_source.h"

namespace stopngo {

/// An input, and what its file says of its length before the library guesses.
struct FfmpegInput {
  std::unique_ptr<std::function<bool()>> gives_up;  ///< true: waiting for the input ends
  FfmpegOwned<AVFormatContext> input;               ///< asks gives_up
  AnnouncedEnd end;
};

/// Throws Failure naming the input.
FfmpegInput OpenFfmpegInput(const SourceOptions& options);

}  // namespace stopngo
