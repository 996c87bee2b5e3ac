// luma_scaler.h: brings luma planes of any size to the one that the module works in.
#pragma once

#include <gst/video/video.h>

#include <cstdint>
#include <span>
#include <vector>

#include "host/common/luma.h"
#include "host/gstreamer/converter.h"

namespace stopngo::gst {

class LumaScaler {
 public:
  /// Throws Failure when there is no way from one to the other.
  LumaScaler(FrameSize from, FrameSize to);

  /// first: the plane's first pixel; stride: bytes from row to row. What is given is valid until the next call.
  std::span<const std::uint8_t> Scale(const std::uint8_t* first, int stride);

 private:
  GstVideoFrame source_{};
  GstVideoFrame target_{};
  std::vector<std::uint8_t> scaled_;
  ConverterPtr converter_;
};

}  // namespace stopngo::gst
