// resample.h: the one mechanism behind every crop: nearest-neighbour copies by fixed patterns.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bitclip.h"

/// A group of Source pixels gives Output pixels; output pixel k of a group takes the source pixel at
/// Offset[k] from the group's first one, and each group starts Source pixels after the previous one.
/// Offsets never fall from one output pixel to the next, across groups neither.
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

/// Where a crop reads, and by which patterns.
struct Sampling {
  const Pattern* Rows;     ///< null: nothing is sampled
  const Pattern* Columns;  ///< null with Rows
  DATA_32 Top;             ///< first source row, counted from the bottom when Flip is negative
  DATA_32 Left;            ///< first source column
};

/// The number of bytes from the start of an image with rows of RowLength bytes up to the end of the last
/// pixel that a top-down sampling of CropY × CropX pixels reads; 0 when it reads none. Never too small:
/// it stays at the largest number instead of wrapping.
std::uint64_t SamplingExtent(const Sampling& Source, DATA_32 CropY, DATA_32 CropX, DATA_32 RowLength);

/// Fills Output, CropY packed rows of CropX pixels, from Input, the first sampled pixel, with RowStep bytes
/// from one source row to the next (negative: upwards). Only the sampled pixels are read. Input and Output
/// may be the same buffer when no output pixel lies behind the pixel that it copies.
void Resample(const data_08* Input, std::ptrdiff_t RowStep, const Pattern& Rows, const Pattern& Columns,
              data_08* Output, DATA_32 CropY, DATA_32 CropX);

/// The first sampled pixel of an image of EndY rows of EndX bytes, and Resample from there, top-down or,
/// with a negative Flip, bottom-up.
void ResampleFlipped(const data_08* Input, const Sampling& Source, INTEGER Flip, DATA_32 EndY, DATA_32 EndX,
                     data_08* Output, DATA_32 CropY, DATA_32 CropX);
