// sink.h: where pictures go: Y4M, or through FFmpeg any video file.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "base/output_file.h"

namespace stopngo {

enum class PixelFormat {
  kGray,  ///< one byte a pixel
  kBgrx,  ///< four bytes a pixel, blue first: Cairo's RGB24 on a little-endian machine
};

struct SinkOptions {
  std::string
      path;  ///< ".y4m", "-" and what else is open already (/dev/fd/N) give Y4M; anything else is FFmpeg's, by its ending
  int width = 0;
  int height = 0;
  double fps = 25;
  PixelFormat format = PixelFormat::kGray;
};

class VideoSink {
 public:
  virtual ~VideoSink() = default;
  /// One picture, rows without padding. Throws Failure.
  virtual void Write(std::span<const std::uint8_t> picture) = 0;
  /// A sentence about the video that its file is to tell, where the format has a place for it that is written last:
  /// those of the .mp4 family. To be given before Finish.
  virtual void Comment(const std::string& sentence) = 0;
  /// Writes what is still to come; the file can be committed then.
  virtual void Finish() = 0;
};

}  // namespace stopngo
