// geometry.h: the rectangles and sizes of one frame.
#pragma once

#include "bitclip.h"
#include "vel_stopngo_ctx.h"

/// Rectangles are {top, left, bottom, right} in working-size coordinates, bottom and right exclusive.
struct FrameGeometry {
  DATA_32 ROI[4];         ///< the region of interest
  DATA_32 Source_ROI[4];  ///< the part of the frame that fills it; the region itself without zoom
  inte_32 scale;          ///< tenths
  inte_32 width_ratio;    ///< columns that the zoom takes off the region
  inte_32 height_ratio;   ///< rows that the zoom takes off the region
  DATA_32 sz;             ///< bytes of an analysis buffer
};

/// Works the geometry out from the settings in force. Any settings: sums wrap at 32 bits.
FrameGeometry DeriveFrameGeometry(const VEL_STOPNGO_CTX& ctx);
