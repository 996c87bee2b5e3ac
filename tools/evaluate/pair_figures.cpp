// pair_figures.cpp: the motion between two frames as the module's histogram has it, in a few figures.
#include "evaluate/pair_figures.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace stopngo {
namespace {

/// Entries of a cell, in the histogram's order.
enum CellEntry : std::size_t { kDown, kRight, kUp, kLeft, kCellEntries };

/// Half a pixel a block: a cell in which something moves.
constexpr int kBusyCell = 6;

}  // namespace

PairFigures ReadPairFigures(double time_s, std::span<const std::int8_t> histogram, std::size_t features) {
  PairFigures motion{.time_s = time_s, .sum = 0, .sideways = 0, .up = 0, .cells = 0};
  double sideways = 0;
  const std::size_t count = std::min(features, histogram.size() / kCellEntries * kCellEntries);
  for (std::size_t cell = 0; cell < count; cell += kCellEntries) {
    const auto entries = histogram.subspan(cell, kCellEntries);
    const int sum = entries[kDown] + entries[kRight] + entries[kUp] + entries[kLeft];
    motion.sum += sum;
    motion.up += entries[kUp];
    sideways += entries[kRight] - entries[kLeft];
    if (sum >= kBusyCell) ++motion.cells;
  }
  motion.sideways = std::abs(sideways);
  return motion;
}

}  // namespace stopngo
