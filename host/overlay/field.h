// field.h: motion vectors and cells, in the frame or over an analysis buffer shown apart.
#pragma once

#include "host/draw/canvas.h"
#include "host/draw/style.h"
#include "vel_stopngo_ctx.h"

namespace stopngo {

/// Where the pixels of an analysis buffer lie in the picture.
struct FieldView {
  Point origin;
  double step_x = 1;  ///< picture pixels to an analysis pixel
  double step_y = 1;
  double unit = 1;  ///< picture pixels to a pixel of an 800 × 480 picture
};

/// Whether the record's grids lie inside its arrays: it holds them from the moment they are derived,
/// while a grid that is too large shows only when a frame is refused.
bool GridFits(const VEL_STOPNGO_CTX& ctx);
/// The colour of a motion: that of its direction, mixed between the two nearest named ones.
Colour MotionColour(double right, double down);
/// The borders of the cells.
void DrawCells(Canvas& canvas, const VEL_STOPNGO_CTX& ctx, const FieldView& view);
/// An arrow a block, longer for faster motion; a dot where a block stands still.
void DrawVectors(Canvas& canvas, const VEL_STOPNGO_CTX& ctx, const FieldView& view);

}  // namespace stopngo
