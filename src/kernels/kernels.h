// kernels.h: the table of kernels: the inner work of every routine, in forms that give the same bits.
//
// The plain forms (generic.cpp) define the results; any other form differs in speed alone. A kernel may
// read exactly what its contract names and no byte beyond, since a frame can end where mapped memory ends.
// Pointers are never null here and sizes have been checked: that is the exported routines' work.
#pragma once

#include "bitclip.h"
#include "resample.h"

struct KernelTable {
  /// Vectors of NumY × NumX blocks; the contract of Block_Match_TSS_. Reads the block patches of both
  /// images, BlockSize rows of BlockSize rounded up to 8 pixels, and those up to 7 pixels around in
  /// ImageOld, as the search goes. For block sizes up to 179 a sum stays below 2^31.
  void (*block_match)(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector,
                      DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX, DATA_32 EndX);

  /// 4 × NumY × NumX sums from 24 × NumY × NumX vector components, modulo 256.
  void (*histogram)(const INTE_08* Vector, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX);

  /// Length values, divided by 128; exact.
  void (*convert)(const INTE_08* Input, real_32* Output, DATA_32 Length);

  /// The score. Every hidden sum adds its rounded products in the order of the inputs; the output sum is
  /// one fused step a hidden node, in the order of the nodes.
  real_32 (*score)(const REAL_32* Feature, const REAL_32* Weight, DATA_32 Inputs, DATA_32 Hiddens);

  /// One source row through Columns into CropX pixels, CropX > 0, written to Repeats packed rows. With
  /// Columns.Output 1, Output may lie in the source row as long as no pixel lies behind the one it copies.
  void (*resample_row)(const DATA_08* Input, data_08* Output, DATA_32 CropX, DATA_32 Repeats,
                       const Pattern& Columns);

  /// In place, left to right, top to bottom, each window seeing the medians before it. 1 ≤ Border and
  /// 2 × Border < Width, Height.
  void (*median_in_place)(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height);

  /// The same for the Gaussian; 2 ≤ Border.
  void (*gaussian_in_place)(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height);

  /// Medians of unfiltered windows; rows, cols > 2.
  void (*median_separate)(const DATA_08* image, int rows, int cols, data_08* filteredimage);

  /// Image[i] ^= Mark[i] for i below Width, in order: Mark may overlap Image.
  void (*mark_row)(data_08* Image, const DATA_08* Mark, DATA_32 Width);
};

/// The kernels in force.
const KernelTable& Kernels();

/// The plain forms.
extern const KernelTable kGenericKernels;
