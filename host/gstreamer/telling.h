// telling.h: what the element tells of itself: decisions, and what is wrong.
#pragma once

#include <gst/video/video.h>

#include <string>

#include "host/detector.h"
#include "host/gstreamer/luma_reader.h"

namespace stopngo::gst {

/// A frame that was handed over, and what it came to.
struct Telling {
  const FrameReport& report;
  const char* gate;      ///< ClosedText of the report
  bool changed = false;  ///< the decision is another one than was told last
  GstClockTime timestamp = GST_CLOCK_TIME_NONE;
  GstClockTime running_time = GST_CLOCK_TIME_NONE;
};

/// Posts the message `stopngo` on the bus.
void PostTelling(GstElement* element, const Telling& telling);
/// Gives a buffer, which is writable, the same structure in a GstVideoRegionOfInterestMeta. region: in the frame.
void AttachTelling(GstBuffer* buffer, const PixelArea& region, const Telling& telling);

/// A sentence for the user, on the bus.
void Inform(GstElement* element, const std::string& sentence);
void Warn(GstElement* element, const std::string& sentence);
/// The pipeline cannot go on with what it was given: settings, weights, a module.
void Fail(GstElement* element, const std::string& sentence);

}  // namespace stopngo::gst
