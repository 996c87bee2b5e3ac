// pair_figures.h: the motion between two frames as the module's histogram has it, in a few figures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace stopngo {

struct PairFigures {
  double time_s;
  double sum;       ///< of all entries: the blocks' motion, pixels
  double sideways;  ///< |right - left|
  double up;
  int cells;  ///< with a sum of 6 or more
};

/// histogram: of the pair that the frame at time_s ends; features: how many of its entries count.
PairFigures ReadPairFigures(double time_s, std::span<const std::int8_t> histogram, std::size_t features);

}  // namespace stopngo
