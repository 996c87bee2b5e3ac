// ffmpeg_version.cpp: which FFmpeg this program runs with.
#include "video/ffmpeg_version.h"

#ifdef STOPNGO_WITH_FFMPEG
#include <cstdint>  // asked for by the header below

extern "C" {
#include <libavutil/avutil.h>
}
#endif

namespace stopngo {

const char* FfmpegVersion() {
#ifdef STOPNGO_WITH_FFMPEG
  return av_version_info();
#else
  return nullptr;
#endif
}

}  // namespace stopngo
