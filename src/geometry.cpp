// geometry.cpp: the rectangles of one frame.
#include "geometry.h"

#include "saturate.h"

namespace {

/// How much of a side the zoom takes off. The division comes before the product and each step rounds to
/// single precision: from Scale 11 on the result can be one below the exact one.
inte_32 ZoomAmount(DATA_32 Side, inte_32 Scale) {
  const real_32 Share = static_cast<real_32>(Scale) / 10.0F;
  return SaturatingInt(static_cast<real_32>(Side) * Share);
}

inte_32 Twice(inte_32 Value) { return WrappingAdd(Value, Value); }

}  // namespace

FrameGeometry DeriveFrameGeometry(const VEL_STOPNGO_CTX& ctx) {
  FrameGeometry Geometry = {
      .ROI = {ctx.ROI_Y, ctx.ROI_X, ctx.ROI_Y + ctx.EndY, ctx.ROI_X + ctx.EndX},
      .Source_ROI = {ctx.ROI_Y, ctx.ROI_X, ctx.ROI_Y + ctx.EndY, ctx.ROI_X + ctx.EndX},
      .scale = ctx.Scale,
      .width_ratio = 0,
      .height_ratio = 0,
      .sz = ctx.EndY * ctx.EndX,
  };
  const bool Zoom = static_cast<DATA_32>(ctx.originalSize) == ctx.EndXInput && ctx.Scale != 0;
  if (!Zoom) return Geometry;

  Geometry.width_ratio = ZoomAmount(ctx.EndX, ctx.Scale);
  Geometry.height_ratio = ZoomAmount(ctx.EndY, ctx.Scale);
  // Columns come off both sides alike; rows come off two thirds at the top, so that the zoom looks at the
  // lower middle of the region, where a vehicle stands on the road.
  const auto Top = static_cast<DATA_32>(Twice(Geometry.height_ratio) / 3);
  const auto Left = static_cast<DATA_32>(Geometry.width_ratio / 2);
  Geometry.Source_ROI[0] += Top;
  Geometry.Source_ROI[1] += Left;
  Geometry.Source_ROI[2] += Top - static_cast<DATA_32>(Geometry.height_ratio);
  Geometry.Source_ROI[3] += Left - static_cast<DATA_32>(Geometry.width_ratio);
  return Geometry;
}
