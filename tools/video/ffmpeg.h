// ffmpeg.h: what the readers and writers through FFmpeg's libraries share. Only used with FFmpeg.
#pragma once

extern "C" {
#include <libswscale/swscale.h>
}

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "video/ffmpeg_calls.h"

namespace stopngo {

struct FfmpegDeleter {
  void operator()(AVFormatContext* format) const {
    if (format->iformat != nullptr) {
      Ffmpeg().avformat_close_input(&format);
      return;
    }
    Ffmpeg().avformat_free_context(format);  // who writes opened the file for itself
  }
  void operator()(AVCodecContext* codec) const { Ffmpeg().avcodec_free_context(&codec); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  void operator()(AVPacket* packet) const { Ffmpeg().av_packet_free(&packet); }
  void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
/// An object of the libraries, opened for reading or for writing, and freed as it has to be.
template <typename Handle>
using FfmpegOwned = std::unique_ptr<Handle, FfmpegDeleter>;

/// What a negative result of the libraries says.
inline std::string FfmpegError(int result) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(result, text.data(), text.size());
  return text.data();
}

/// For swscale: the same pixels on every machine, so that a decision can be reproduced on another one.
inline constexpr int kExactScaling = SWS_BILINEAR | SWS_ACCURATE_RND | SWS_BITEXACT;

/// swscale's vector code reads and writes whole vectors past the last pixel: so many bytes are kept free.
inline constexpr std::size_t kScalerPadding = 64;

}  // namespace stopngo
