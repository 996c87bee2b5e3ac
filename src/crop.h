// crop.h: the one mechanism behind every crop, nearest-neighbour copies by fixed patterns, and what the two
// crops of the frame path sample.
#pragma once

#include <cstdint>

#include "bitclip.h"
#include "pattern.h"

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

/// What Image_Cropping_ samples.
Sampling CroppingSource(const DATA_32* Source_Location, DATA_32 Ratio);

/// What Image_Original_Cropping_ samples, for an output of CropY × CropX.
Sampling OriginalCroppingSource(DATA_32 original_width, const DATA_32* Source_L, DATA_32 CropY, DATA_32 CropX,
                                DATA_32 Ratio);

/// Samples an image of EndY rows of EndX bytes into Output, CropY packed rows of CropX pixels; with a
/// negative Flip, the image turned upside down.
void ResampleFlipped(const data_08* Input, const Sampling& Source, INTEGER Flip, DATA_32 EndY, DATA_32 EndX,
                     data_08* Output, DATA_32 CropY, DATA_32 CropX);
