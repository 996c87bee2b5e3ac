// converter.h: GStreamer's converter of frames, owned.
#pragma once

#include <gst/video/video.h>

#include <memory>

namespace stopngo::gst {

struct FreeConverter {
  void operator()(GstVideoConverter* converter) const { gst_video_converter_free(converter); }
};
using ConverterPtr = std::unique_ptr<GstVideoConverter, FreeConverter>;

}  // namespace stopngo::gst
