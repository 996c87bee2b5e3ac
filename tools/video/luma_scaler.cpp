// luma_scaler.cpp: scales luma planes with FFmpeg's swscale.
#include "video/luma_scaler.h"

#include "host/common/failure.h"
#include "video/ffmpeg.h"

namespace stopngo {

LumaScaler::LumaScaler(int width, int height) : width_(width), height_(height) {}
LumaScaler::~LumaScaler() { sws_freeContext(context_); }

void LumaScaler::Scale(LumaFrame& frame) {
  // Grey to grey: swscale takes both for full range, and so converts no range.
  context_ = sws_getCachedContext(context_, frame.width, frame.height, AV_PIX_FMT_GRAY8, width_, height_,
                                  AV_PIX_FMT_GRAY8, kExactScaling, nullptr, nullptr, nullptr);
  if (context_ == nullptr) {
    throw Failure("frames of " + std::to_string(frame.width) + " x " + std::to_string(frame.height) +
                  " cannot be scaled to " + std::to_string(width_) + " x " + std::to_string(height_));
  }
  scaled_.reserve(std::size_t{1} * width_ * height_ + kScalerPadding);
  scaled_.resize(std::size_t{1} * width_ * height_);
  frame.pixels.reserve(frame.pixels.size() + kScalerPadding);
  // swscale looks at four planes, whatever the format has.
  const std::uint8_t* const source[4] = {frame.pixels.data()};
  const int source_stride[4] = {frame.width};
  std::uint8_t* const target[4] = {scaled_.data()};
  const int target_stride[4] = {width_};
  sws_scale(context_, source, source_stride, 0, frame.height, target, target_stride);
  frame.pixels.swap(scaled_);
  frame.width = width_;
  frame.height = height_;
}

}  // namespace stopngo
