// formats.h: the video formats whose luma can be taken as it is.
#pragma once

#include <gst/video/video.h>

namespace stopngo::gst {

/// Whether the first component of the pixels is luma of a byte, a fixed number of bytes from pixel to pixel.
bool HasLuma(const GstVideoFormatInfo& format);

/// All such formats, of any size. The caller owns the caps.
GstCaps* LumaCaps();

}  // namespace stopngo::gst
