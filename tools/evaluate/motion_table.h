// motion_table.h: what the module's histograms look like, by what happens and by kind of clip: recordings and scenes
// side by side tell what scenes lack.
#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <span>
#include <string>
#include <vector>

#include "clips/clip.h"
#include "evaluate/evaluation.h"

namespace stopngo {

/// Five of the sorted values: at 10, 25, 50, 75 and 90 %, or the least, the quartiles and the greatest.
using Spread = std::array<double, 5>;

/// A line of either table; spreads of nothing are all 0.
struct MotionRow {
  std::string what;     ///< the label, or the time since a departure's start
  std::string kind;     ///< of clip; empty for departures, of all kinds
  int count = 0;        ///< frame pairs, or departures
  Spread sum{};         ///< of a pair's histogram, pixels
  Spread sideways{};    ///< net, of the sum; pairs with a sum above 50 alone, as for up
  Spread up{};          ///< of the sum
  Spread cells{};       ///< with a sum of 6 or more
  double all_zero = 0;  ///< share of the pairs; not told of departures
};

/// A row for each label and kind that occur. runs: with motion.
std::vector<MotionRow> MotionByLabel(std::span<const Clip> clips, std::span<const ClipRun> runs);
/// A row for each span of time around a departure's start: spreads of the medians of the departures.
std::vector<MotionRow> MotionOfDepartures(std::span<const ClipRun> runs);

/// Columns with their names above them, a line a row.
std::vector<std::string> MotionLines(std::span<const MotionRow> rows);
nlohmann::ordered_json MotionJson(const MotionRow& row);

}  // namespace stopngo
