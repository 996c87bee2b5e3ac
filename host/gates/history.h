// history.h: the last three seconds of motion, as the quantities by which the history gate judges them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace stopngo {

/// Pairs of frames that are looked back at: 3 s and the present one, at 6 a second.
inline constexpr std::size_t kHistoryPairs = 19;

/// The history is looked at in spans, the longer the further back: first and last pair, 0 the present one.
struct HistorySpan {
  std::size_t first;
  std::size_t last;
};
inline constexpr std::array kHistorySpans{HistorySpan{0, 0},  HistorySpan{1, 1},  HistorySpan{2, 2},
                                          HistorySpan{3, 3},  HistorySpan{4, 5},  HistorySpan{6, 8},
                                          HistorySpan{9, 12}, HistorySpan{13, 18}};

/// Of a span, in this order.
enum class HistoryQuantity {
  kMeanSum,        ///< ln(1 + mean sum) / 8
  kLeastSum,       ///< ln(1 + least sum) / 8
  kUp,             ///< the others as shares of the mean sum and 50: up − down
  kSideways,       ///< |right − left|
  kTowardsColumn,  ///< towards the middle column: left − right, times the cell's column from −1 to 1
  kTowardsRow,     ///< towards the middle row: up − down, times the cell's row from −1 to 1
  kThere,          ///< 1; 0 where no pair of the span was analysed, and then all others are 0
  kCount,
};

/// The region in thirds across and halves down: of each such zone, left before right, the upper ones first, two more
/// quantities follow, up − down and right − left, as shares of the same.
inline constexpr std::size_t kZonesAcross = 3;
inline constexpr std::size_t kZones = kZonesAcross * 2;
inline constexpr std::size_t kQuantitiesASpan =
    static_cast<std::size_t>(HistoryQuantity::kCount) + 2 * kZones;
/// 152, a multiple of 8 as the module's perceptron has its inputs.
inline constexpr std::size_t kHistoryInputs = kHistorySpans.size() * kQuantitiesASpan;
inline constexpr std::size_t kHistoryHiddens = 16;

struct ZoneMotion {
  int up = 0;     ///< up − down
  int right = 0;  ///< right − left
};

/// The motion between two frames, in pixels summed over blocks.
struct PairMotion {
  bool analysed = false;  ///< false: missing, as in a hold, where the module looks at none
  int sum = 0;            ///< of all directions
  int up = 0;             ///< up − down
  int right = 0;          ///< right − left
  float towards_column = 0;
  float towards_row = 0;
  std::array<ZoneMotion, kZones> zones{};
};

/// Of a histogram: down, right, up and left of a cell, cells row by row, so many columns of them. Of none: missing.
PairMotion MotionOf(std::span<const std::int8_t> histogram, int columns);

/// The quantities of pairs, the present one first: those of the first span, in the order of HistoryQuantity, then those
/// of the second, and so on. The same bits on every machine.
void HistoryQuantities(std::span<const PairMotion, kHistoryPairs> pairs,
                       std::span<float, kHistoryInputs> quantities);

}  // namespace stopngo
