// overlay.h: draws what the module saw in a frame over that frame.
#pragma once

#include <deque>
#include <optional>

#include "host/common/luma.h"
#include "host/detector.h"
#include "host/draw/canvas.h"
#include "host/sampled_area.h"

namespace stopngo {

/// Seconds that the strip of scores covers unless told otherwise.
inline constexpr double kUsualHistory_s = 10;

/// Region and sampled part, motion vectors and cells, score, counters and decision, and a strip with
/// the scores of the last seconds. Everything grows with the frame, and the panels keep clear of the
/// region wherever it lies.
class Overlay {
 public:
  /// history_s: seconds that the strip of scores covers.
  Overlay(const FrameFormat& source, const SampledArea& area, double history_s);
  /// Notes a frame's score for the strip; called for every frame, drawn or not.
  void Record(const FrameReport& report);
  /// Draws a frame that was recorded and written last; ctx: the detector's record after that write.
  void Draw(const LumaView& frame, const FrameReport& report, const VEL_STOPNGO_CTX& ctx);
  [[nodiscard]] const Canvas& Picture() const { return canvas_; }

 private:
  Canvas canvas_;
  double unit_;  ///< pixels to a pixel of an 800 × 480 picture
  SampledArea area_;
  double history_s_;
  double frame_s_;  ///< from one frame to the next, seconds
  std::deque<FrameReport> history_;
};

}  // namespace stopngo
