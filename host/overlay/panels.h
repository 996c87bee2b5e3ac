// panels.h: the panels beside the region: decision, cells and colours, scores over time.
#pragma once

#include <deque>

#include "host/detector.h"
#include "host/draw/canvas.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {

/// Sizes of the panels on an 800 × 480 picture, pixels; the strip takes the picture's width.
inline constexpr double kStatusWidth = 252;
inline constexpr double kMotionWidth = 268;
inline constexpr double kPanelHeight = 120;
inline constexpr double kStripHeight = 60;

/// Decision, time, score against the threshold, alarm counter, hold timer.
void DrawStatus(Canvas& canvas, const Box& box, double unit, const FrameReport& report,
                const VEL_STOPNGO_CTX& ctx);

/// What the colours of the vectors mean, and every cell's four sums.
void DrawMotion(Canvas& canvas, const Box& box, double unit, const FrameReport& report,
                const VEL_STOPNGO_CTX& ctx);

struct Strip {
  const std::deque<FrameReport>& reports;  ///< oldest first; the last one is now
  double seconds = 10;                     ///< shown
  double frame_s = 0.04;                   ///< from one frame to the next
};
/// The scores of the last seconds, with alarm and cooling shaded.
void DrawStrip(Canvas& canvas, const Box& box, double unit, const Strip& strip, const VEL_STOPNGO_CTX& ctx);

}  // namespace stopngo
