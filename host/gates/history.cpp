// history.cpp: the last three seconds of motion, as the quantities by which the history gate judges them.
#include "host/gates/history.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "host/common/exact_math.h"

namespace stopngo {
namespace {

/// Of a camera at rest the sum is about that; shares of less would be shares of noise.
constexpr float kQuietSum = 50;
/// ln(1 + 6720) is 8.8: a sum has 80 entries of 84 at most by default. Quantities so stay within about −1 and 1.
constexpr float kLogScale = 1.0F / 8;

/// A sum of products with twice the distance from the middle of so many rows or columns, brought to distances from −1
/// to 1. Whole numbers up to there: the order of cells cannot change a bit.
float Weighted(int twice, int count) {
  return count > 1 ? static_cast<float>(twice) / static_cast<float>(count - 1) : 0;
}

float LogOfSum(float sum) { return Log(1 + std::max(sum, 0.0F)) * kLogScale; }

/// What a span's pairs come to.
struct SpanSums {
  int pairs = 0;
  int sum = 0;
  int least = std::numeric_limits<int>::max();
  int up = 0;
  int right = 0;
  float towards_column = 0;
  float towards_row = 0;
  std::array<ZoneMotion, kZones> zones{};

  void Add(const PairMotion& pair) {
    if (!pair.analysed) return;
    ++pairs;
    sum += pair.sum;
    least = std::min(least, pair.sum);
    up += pair.up;
    right += pair.right;
    towards_column += pair.towards_column;
    towards_row += pair.towards_row;
    for (std::size_t i = 0; i < kZones; ++i) {
      zones[i].up += pair.zones[i].up;
      zones[i].right += pair.zones[i].right;
    }
  }
};

/// By HistoryQuantity.
std::array<float, kQuantitiesASpan> QuantitiesOf(const SpanSums& sums) {
  if (sums.pairs == 0) return {};
  const auto pairs = static_cast<float>(sums.pairs);
  const float mean = static_cast<float>(sums.sum) / pairs;
  const float whole = (std::max(mean, 0.0F) + kQuietSum) * pairs;
  std::array<float, kQuantitiesASpan> quantities{LogOfSum(mean),
                                                 LogOfSum(static_cast<float>(sums.least)),
                                                 static_cast<float>(sums.up) / whole,
                                                 std::abs(static_cast<float>(sums.right)) / whole,
                                                 sums.towards_column / whole,
                                                 sums.towards_row / whole,
                                                 1};
  auto next = quantities.begin() + static_cast<std::ptrdiff_t>(HistoryQuantity::kCount);
  for (const ZoneMotion& zone : sums.zones) {
    *next++ = static_cast<float>(zone.up) / whole;
    *next++ = static_cast<float>(zone.right) / whole;
  }
  return quantities;
}

/// Which of so many equal shares an index of so many lies in.
std::size_t ShareOf(int index, int count, std::size_t shares) {
  return static_cast<std::size_t>(2 * index + 1) * shares / static_cast<std::size_t>(2 * count);
}

}  // namespace

PairMotion MotionOf(std::span<const std::int8_t> histogram, int columns) {
  constexpr int kDirections = 4;
  PairMotion motion;
  const int cells = static_cast<int>(histogram.size()) / kDirections;
  if (cells == 0 || columns < 1) return motion;
  const int rows = cells / columns;
  int column_twice = 0;
  int row_twice = 0;
  for (int cell = 0; cell < rows * columns; ++cell) {
    const auto entries = histogram.subspan(static_cast<std::size_t>(cell) * kDirections, kDirections);
    const int up = entries[2] - entries[0];
    const int right = entries[1] - entries[3];
    motion.sum += entries[0] + entries[1] + entries[2] + entries[3];
    motion.up += up;
    motion.right += right;
    column_twice -= right * (2 * (cell % columns) - (columns - 1));
    row_twice += up * (2 * (cell / columns) - (rows - 1));
    ZoneMotion& zone = motion.zones[ShareOf(cell / columns, rows, kZones / kZonesAcross) * kZonesAcross +
                                    ShareOf(cell % columns, columns, kZonesAcross)];
    zone.up += up;
    zone.right += right;
  }
  motion.analysed = true;
  motion.towards_column = Weighted(column_twice, columns);
  motion.towards_row = Weighted(row_twice, rows);
  return motion;
}

void HistoryQuantities(std::span<const PairMotion, kHistoryPairs> pairs,
                       std::span<float, kHistoryInputs> quantities) {
  auto next = quantities.begin();
  for (const HistorySpan& span : kHistorySpans) {
    SpanSums sums;
    for (std::size_t i = span.first; i <= span.last; ++i) sums.Add(pairs[i]);
    next = std::ranges::copy(QuantitiesOf(sums), next).out;
  }
}

}  // namespace stopngo
