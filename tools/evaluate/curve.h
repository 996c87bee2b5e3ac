// curve.h: what a threshold does: recall against false alarms, as a table and as a plot.
#pragma once

#include <ostream>
#include <span>

#include "evaluate/tally.h"
#include "host/draw/canvas.h"

namespace stopngo {

struct CurvePoint {
  double threshold;
  Tally tally;
};

/// Tab-separated values, a line a threshold.
void WriteCurve(std::ostream& out, std::span<const CurvePoint> points);
/// Recall over false alarms per hour of standing. marks: other detectors on the same clips.
Canvas DrawCurve(std::span<const CurvePoint> points, std::span<const NamedTally> marks);

}  // namespace stopngo
