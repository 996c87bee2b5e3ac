// seen_picture.h: what the module saw, drawn into a stream's frames.
#pragma once

#include <gst/video/video.h>

#include "host/common/luma.h"
#include "host/detector.h"
#include "host/gstreamer/converter.h"
#include "host/gstreamer/luma_reader.h"
#include "host/overlay/overlay.h"
#include "host/sampled_area.h"

namespace stopngo::gst {

/// The pictures of `stopngo render`: the luma as it was handed over, with region, motion, scores and decision. They take
/// the place of a frame's pixels, whatever its format and size.
class SeenPicture {
 public:
  /// info: the stream's frames; frames: as they are handed over; area: the part of those that the module looks at.
  /// Throws Failure when such frames cannot be drawn into.
  SeenPicture(const GstVideoInfo& info, const FrameFormat& frames, const SampledArea& area);

  /// Notes what became of a frame that was handed over.
  void Record(const FrameReport& report) { overlay_.Record(report); }
  /// frame: mapped for writing, and whole; report: the one recorded last; context: the detector's record since then.
  /// Throws std::bad_alloc, and Failure when something could not be drawn.
  void Draw(MappedFrame& frame, const FrameReport& report, const VEL_STOPNGO_CTX& context);

 private:
  FrameSize size_;
  LumaReader reader_;
  Overlay overlay_;
  GstVideoFrame drawn_{};  ///< the overlay's picture
  ConverterPtr converter_;
};

}  // namespace stopngo::gst
