// sampled_area.h: which part of a frame the module looks at.
#pragma once

#include "host/common/luma.h"
#include "host/detector.h"
#include "host/settings/settings.h"

namespace stopngo {

/// The part of a frame that fills an analysis buffer, in the frame's pixels.
struct SampledArea {
  double left = 0;
  double top = 0;
  double step_x = 0;  ///< frame pixels from one analysis pixel to the next, on average
  double step_y = 0;
  /// False when the settings sample nothing: the analysis buffers then stay as they are.
  [[nodiscard]] bool Valid() const { return step_x > 0 && step_y > 0; }
};

/// Asks the module itself: a detector with the same geometry is given frames whose pixels hold their
/// own column or row, and its analysis buffers then name the pixels that were taken. Throws Failure
/// when the module refuses frames of this size with these settings.
SampledArea ProbeSampledArea(const Module& module, const Settings& settings, const FrameFormat& source);

}  // namespace stopngo
