// outline.h: the region's outline, drawn into a frame's luma.
#pragma once

#include "host/gstreamer/luma_reader.h"

namespace stopngo::gst {

/// Lies around the region, as far as the frame goes, and is the bolder the more there is to tell: 1 an alarm, 2 cooling.
/// frame: mapped for writing.
void DrawOutline(const MappedFrame& frame, const PixelArea& region, int decision);

}  // namespace stopngo::gst
