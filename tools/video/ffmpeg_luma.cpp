// ffmpeg_luma.cpp: the luma of a decoded picture, whatever its pixel format.
#include "video/ffmpeg_luma.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "host/common/failure.h"

namespace stopngo {
namespace {

// Whether the first component is luma that can be taken as it is: YUV or grey, whole bytes or words.
bool HasLuma(const AVPixFmtDescriptor& format) {
  constexpr std::uint64_t kForeign = AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM |
                                     AV_PIX_FMT_FLAG_FLOAT | AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BAYER;
  return (format.flags & kForeign) == 0 && format.comp[0].depth >= 8;
}

// The bytes as they are, full or limited range. A step above 1: packed formats such as YUYV.
void Copy(const AVFrame& frame, const AVComponentDescriptor& luma, std::vector<std::uint8_t>& pixels) {
  std::uint8_t* out = pixels.data();
  for (int y = 0; y < frame.height; ++y, out += frame.width) {
    const std::uint8_t* const row =
        frame.data[luma.plane] + std::ptrdiff_t{y} * frame.linesize[luma.plane] + luma.offset;
    if (luma.step == 1) {
      std::memcpy(out, row, static_cast<std::size_t>(frame.width));
      continue;
    }
    for (int x = 0; x < frame.width; ++x) out[x] = row[std::ptrdiff_t{x} * luma.step];
  }
}

}  // namespace

void LumaTaker::Take(const AVFrame& frame, std::vector<std::uint8_t>& pixels) {
  pixels.resize(std::size_t{1} * frame.width * frame.height);
  const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
  if (format == nullptr) throw Failure(name_ + ": frames of an unknown pixel format");
  if (!HasLuma(*format)) {
    ConvertToGrey(frame, pixels);
  } else if (format->comp[0].depth == 8) {
    Copy(frame, format->comp[0], pixels);
  } else {
    Reduce(frame, pixels);
  }
}

// More than 8 bits: the upper 8, rounded, which keeps either range.
void LumaTaker::Reduce(const AVFrame& frame, std::vector<std::uint8_t>& pixels) {
  const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
  const int surplus = format.comp[0].depth - 8;
  words_.resize(static_cast<std::size_t>(frame.width));
  const std::uint8_t* planes[4];
  std::copy_n(frame.data, 4, planes);
  std::uint8_t* out = pixels.data();
  for (int y = 0; y < frame.height; ++y, out += frame.width) {
    av_read_image_line(words_.data(), planes, frame.linesize, &format, 0, y, 0, frame.width, 0);
    std::transform(words_.begin(), words_.end(), out, [surplus](std::uint16_t word) {
      return static_cast<std::uint8_t>(std::min(255, (word + (1 << surplus >> 1)) >> surplus));
    });
  }
}

// RGB, palettes, single bits: full-range grey, so that a grey picture gives its own values. Without the
// name of a method the library would set up the conversion anew for every frame.
void LumaTaker::ConvertToGrey(const AVFrame& frame, std::vector<std::uint8_t>& pixels) {
  const auto format = static_cast<AVPixelFormat>(frame.format);
  converter_.reset(sws_getCachedContext(converter_.release(), frame.width, frame.height, format, frame.width,
                                        frame.height, AV_PIX_FMT_GRAY8, kExactScaling, nullptr, nullptr,
                                        nullptr));
  if (!converter_) throw Failure(name_ + ": frames of the pixel format " + av_get_pix_fmt_name(format));
  pixels.reserve(pixels.size() + kScalerPadding);
  std::uint8_t* const target[4] = {pixels.data()};
  const int stride[4] = {frame.width};
  sws_scale(converter_.get(), frame.data, frame.linesize, 0, frame.height, target, stride);
}

}  // namespace stopngo
