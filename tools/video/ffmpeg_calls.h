// ffmpeg_calls.h: FFmpeg's larger libraries, loaded when they are first needed.
//
// libavformat, libavcodec and libavdevice bring some 180 others along. Linked, they took 0.3 s of a processor at
// every start, more than all else that a command does which reads no video. libavutil and libswscale are small and
// linked.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace stopngo {

/// The functions of libavformat and libavcodec, each under its own name.
struct FfmpegCalls {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a declaration has none
#define FFMPEG_CALL(library, function) decltype(&::function) function = nullptr;
#include "video/ffmpeg_calls.def"
#undef FFMPEG_CALL
};

/// Loads the libraries when it is called first; Failure naming the one that cannot be.
const FfmpegCalls& Ffmpeg();

/// Makes cameras and screens known to av_find_input_format; Failure when libavdevice cannot be loaded.
void RegisterDevices();

}  // namespace stopngo
