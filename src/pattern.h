// pattern.h: nearest-neighbour patterns, the form of every crop.
#pragma once

#include <cstdint>

#include "bitclip.h"

/// A group of Source pixels gives Output pixels; output pixel k of a group takes the source pixel at
/// Offset[k] from the group's first one, and each group starts Source pixels after the previous one.
/// Offsets never fall from one output pixel to the next, across groups neither; that of a mere copy, 1 to 1, is 0.
struct Pattern {
  data_08 Source;
  data_08 Output;  ///< 1 … 12
  data_08 Offset[12];

  /// The source offset of output pixel Index.
  [[nodiscard]] constexpr std::uint64_t At(DATA_32 Index) const {
    return std::uint64_t{Source} * (Index / Output) + Offset[Index % Output];
  }
};

inline constexpr Pattern kCopy = {1, 1, {0}};
inline constexpr Pattern kEverySecond = {2, 1, {0}};
inline constexpr Pattern kEveryThird = {3, 1, {0}};
