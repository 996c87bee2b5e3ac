// ffmpeg_luma.h: the luma of a decoded picture, whatever its pixel format. Only used with FFmpeg.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "video/ffmpeg.h"

namespace stopngo {

class LumaTaker {
 public:
  /// name: of the input, for failures.
  explicit LumaTaker(std::string name) : name_(std::move(name)) {}
  /// Fills pixels with a plane of the frame's size. Throws Failure.
  void Take(const AVFrame& frame, std::vector<std::uint8_t>& pixels);

 private:
  void Reduce(const AVFrame& frame, std::vector<std::uint8_t>& pixels);
  void ConvertToGrey(const AVFrame& frame, std::vector<std::uint8_t>& pixels);

  std::string name_;
  FfmpegOwned<SwsContext> converter_;
  std::vector<std::uint16_t> words_;
};

}  // namespace stopngo
