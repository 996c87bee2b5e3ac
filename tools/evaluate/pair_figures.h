// pair_figures.h: the motion between two frames as the module's histogram has it, in a few figures.
#pragma once

#include "vel_stopngo_ctx.h"

namespace stopngo {

struct PairFigures {
  double time_s;
  double sum;       ///< of all entries: the blocks' motion, pixels
  double sideways;  ///< |right - left|
  double up;
  int cells;  ///< with a sum of 6 or more
};

/// ctx: of a detector that has just analysed a frame.
PairFigures ReadPairFigures(double time_s, const VEL_STOPNGO_CTX& ctx);

}  // namespace stopngo
