// ffmpeg_version.h: which FFmpeg this program runs with.
#pragma once

namespace stopngo {

/// As FFmpeg tells it, such as "5.1.6-0+deb12u1"; null without FFmpeg.
const char* FfmpegVersion();

}  // namespace stopngo
