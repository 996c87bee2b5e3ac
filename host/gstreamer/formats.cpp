// formats.cpp: the video formats whose luma can be taken as it is.
#include "host/gstreamer/formats.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <vector>

namespace stopngo::gst {

bool HasLuma(const GstVideoFormatInfo& format) {
  constexpr unsigned kWithLuma = GST_VIDEO_FORMAT_FLAG_YUV | GST_VIDEO_FORMAT_FLAG_GRAY;
  // Those have no rows, or pixels in groups, which have a step of 0.
  constexpr unsigned kForeign = GST_VIDEO_FORMAT_FLAG_COMPLEX | GST_VIDEO_FORMAT_FLAG_TILED;
  constexpr unsigned kBits = 8;
  return (format.flags & kWithLuma) != 0 && (format.flags & kForeign) == 0 &&
         format.depth[GST_VIDEO_COMP_Y] == kBits && format.shift[GST_VIDEO_COMP_Y] == 0 &&
         format.bits == kBits && format.pixel_stride[GST_VIDEO_COMP_Y] > 0;
}

GstCaps* LumaCaps() {
  unsigned count = 0;
  const GstVideoFormat* const raw = gst_video_formats_raw(&count);
  std::vector<GstVideoFormat> formats;
  std::ranges::copy_if(std::span(raw, count), std::back_inserter(formats),
                       [](GstVideoFormat format) { return HasLuma(*gst_video_format_get_info(format)); });
  return gst_video_make_raw_caps(formats.data(), static_cast<unsigned>(formats.size()));
}

}  // namespace stopngo::gst
