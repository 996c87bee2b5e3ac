// field.cpp: draws the block grid's vectors and the cells' borders.
#include "host/overlay/field.h"

#include <algorithm>
#include <cmath>

namespace stopngo {
namespace {

/// A cell covers 3 × 4 blocks.
constexpr DATA_32 kCellRows = 3;
constexpr DATA_32 kCellColumns = 4;
/// The search reaches 4 + 2 + 1 pixels along an axis.
constexpr double kLongest = 7;

/// The grid starts one block inside the buffer.
Point BlockCorner(const VEL_STOPNGO_CTX& ctx, const FieldView& view, double row, double column) {
  return {view.origin.x + (column + 1) * ctx.BlockSize * view.step_x,
          view.origin.y + (row + 1) * ctx.BlockSize * view.step_y};
}

}  // namespace

bool GridFits(const VEL_STOPNGO_CTX& ctx) {
  const auto vectors = std::uint64_t{ctx.NumY} * ctx.NumX;
  const auto cells = std::uint64_t{ctx.SumY} * ctx.SumX;
  return vectors > 0 && vectors * 2 <= kMotionCapacity && cells * 4 <= kChunkCapacity;
}

Colour MotionColour(double right, double down) {
  const double total = std::abs(right) + std::abs(down);
  if (total <= 0) return style::kMuted;
  const Colour across = style::kDirections[right > 0 ? 1 : 3].colour;
  const Colour along = style::kDirections[down > 0 ? 0 : 2].colour;
  const double share = std::abs(down) / total;
  const auto mix = [share](double from, double to) { return from + (to - from) * share; };
  return {mix(across.red, along.red), mix(across.green, along.green), mix(across.blue, along.blue)};
}

void DrawCells(Canvas& canvas, const VEL_STOPNGO_CTX& ctx, const FieldView& view) {
  const double rows = ctx.SumY * kCellRows;
  const double columns = ctx.SumX * kCellColumns;
  // A light line on a wider dark one shows on any picture.
  struct Pass {
    Colour colour;
    double line;
  };
  for (const auto& [colour, line] : {Pass{style::kGridRim, 2.0}, Pass{style::kGridLine, 0.8}}) {
    for (DATA_32 row = 0; row <= ctx.SumY; ++row) {
      canvas.Line(BlockCorner(ctx, view, row * kCellRows, 0),
                  BlockCorner(ctx, view, row * kCellRows, columns), colour, line * view.unit);
    }
    for (DATA_32 column = 0; column <= ctx.SumX; ++column) {
      canvas.Line(BlockCorner(ctx, view, 0, column * kCellColumns),
                  BlockCorner(ctx, view, rows, column * kCellColumns), colour, line * view.unit);
    }
  }
}

void DrawVectors(Canvas& canvas, const VEL_STOPNGO_CTX& ctx, const FieldView& view) {
  const double pitch = ctx.BlockSize * std::min(view.step_x, view.step_y);
  const inte_08* vector = ctx.Motion;
  for (DATA_32 row = 0; row < ctx.NumY; ++row) {
    for (DATA_32 column = 0; column < ctx.NumX; ++column, vector += 2) {
      const double down = vector[0];
      const double right = vector[1];
      const Point centre = BlockCorner(ctx, view, row + 0.5, column + 0.5);
      const double speed = std::hypot(right, down);
      if (speed <= 0) {
        canvas.Dot(centre, 0.11 * pitch, style::kStillRim);
        canvas.Dot(centre, 0.06 * pitch, style::kStill);
        continue;
      }
      // Motion of one pixel has to show too, so that lengths start at half a block, not at nothing.
      const double half = 0.5 * pitch * (0.5 + 0.55 * std::min(1.0, speed / kLongest)) / speed;
      canvas.Arrow({centre.x - right * half, centre.y - down * half},
                   {centre.x + right * half, centre.y + down * half}, MotionColour(right, down),
                   std::max(0.125 * pitch, 0.8));
    }
  }
}

}  // namespace stopngo
