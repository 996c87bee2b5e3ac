// open_sink.cpp: chooses a sink by the path's ending.
#include "video/open_sink.h"

#include <filesystem>

#include "host/failure.h"
#include "video/writer.h"

namespace stopngo {

std::unique_ptr<VideoSink> OpenSink(const SinkOptions& options, OutputFile& file) {
  if (options.path == "-" || std::filesystem::path(options.path).extension() == ".y4m") {
    return OpenY4mSink(options, file);
  }
#ifdef STOPNGO_WITH_FFMPEG
  return OpenFfmpegSink(options, file);
#else
  throw Failure(options.path + ": without FFmpeg only .y4m files (or - for standard output) can be written");
#endif
}

}  // namespace stopngo
