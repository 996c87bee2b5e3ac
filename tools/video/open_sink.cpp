// open_sink.cpp: chooses a sink by the path's ending.
#include "video/open_sink.h"

#include <unistd.h>

#include <filesystem>

#include "base/file_place.h"
#include "host/common/failure.h"
#include "video/writer.h"

namespace stopngo {

std::unique_ptr<VideoSink> OpenSink(const SinkOptions& options, OutputFile& file) {
  const bool open_already = OpenDescriptor(options.path, STDOUT_FILENO).has_value();
  if (open_already || std::filesystem::path(options.path).extension() == ".y4m") {
    return OpenY4mSink(options, file);
  }
#ifdef STOPNGO_WITH_FFMPEG
  return OpenFfmpegSink(options, file);
#else
  throw Failure(options.path + ": without FFmpeg only .y4m files (or - for standard output) can be written");
#endif
}

}  // namespace stopngo
