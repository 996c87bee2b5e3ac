// luma_scaler.cpp: brings luma planes of any size to the one that the module works in.
#include "host/gstreamer/luma_scaler.h"

#include <string>

#include "host/common/failure.h"

namespace stopngo::gst {
namespace {

/// Frames of grey, whose memory is told later. Both are taken for the same range, so that none is converted.
GstVideoInfo GreyInfo(FrameSize size) {
  GstVideoInfo info;
  if (gst_video_info_set_format(&info, GST_VIDEO_FORMAT_GRAY8, static_cast<unsigned>(size.width),
                                static_cast<unsigned>(size.height)) == 0) {
    throw Failure("frames of " + std::to_string(size.width) + " x " + std::to_string(size.height) +
                  " cannot be scaled");
  }
  return info;
}

}  // namespace

LumaScaler::LumaScaler(FrameSize from, FrameSize to)
    : scaled_(std::size_t{1} * static_cast<std::size_t>(to.width) * static_cast<std::size_t>(to.height)) {
  source_.info = GreyInfo(from);
  target_.info = GreyInfo(to);
  target_.info.stride[0] = to.width;
  target_.data[0] = scaled_.data();
  // Linear, over all pixels that a smaller picture leaves out, as the command scales; it owns the options.
  GstStructure* const options = gst_structure_new(
      "options", GST_VIDEO_CONVERTER_OPT_RESAMPLER_METHOD, GST_TYPE_VIDEO_RESAMPLER_METHOD,
      GST_VIDEO_RESAMPLER_METHOD_LINEAR, GST_VIDEO_CONVERTER_OPT_DITHER_METHOD, GST_TYPE_VIDEO_DITHER_METHOD,
      GST_VIDEO_DITHER_NONE, GST_VIDEO_CONVERTER_OPT_THREADS, G_TYPE_UINT, 1U, nullptr);
  converter_.reset(gst_video_converter_new(&source_.info, &target_.info, options));
  if (!converter_) {
    throw Failure("frames of " + std::to_string(from.width) + " x " + std::to_string(from.height) +
                  " cannot be scaled to " + std::to_string(to.width) + " x " + std::to_string(to.height));
  }
}

std::span<const std::uint8_t> LumaScaler::Scale(const std::uint8_t* first, int stride) {
  source_.data[0] = const_cast<std::uint8_t*>(first);  // which is only read
  source_.info.stride[0] = stride;
  gst_video_converter_frame(converter_.get(), &source_, &target_);
  return scaled_;
}

}  // namespace stopngo::gst
