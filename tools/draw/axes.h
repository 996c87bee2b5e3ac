// axes.h: the grid, the frame and the numbers of a plot's axes.
#pragma once

#include <span>
#include <string>

#include "host/draw/canvas.h"

namespace stopngo {

struct AxisMark {
  double at;  ///< column or row, pixels
  std::string text;
};

struct AxesStyle {
  Colour ink, grid;
  double text;    ///< size, pixels
  double below;   ///< from the area to the baseline of numbers under it
  double beside;  ///< from numbers to the area
  double drop;    ///< of their baseline under the line that they belong to
};

/// across: along the lower edge; up: along the left one.
void DrawGrid(Canvas& canvas, const Box& area, std::span<const AxisMark> across, std::span<const AxisMark> up,
              const AxesStyle& style);

}  // namespace stopngo
