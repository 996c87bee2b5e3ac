// kernels.h: the kernels: the inner work of every routine, in forms that give the same bits.
//
// The plain forms (generic.cpp) define the results; any other form differs in speed alone. A kernel may
// read exactly what its contract names and no byte beyond, since a frame can end where mapped memory ends.
// Pointers are never null here and sizes have been checked: that is the exported routines' work. Nothing
// overlaps unless the contract says so.
#pragma once

#include <cstddef>
#include <span>

#include "bitclip.h"
#include "kernels.def"
#include "pattern.h"

/// How far a motion search goes from its block: steps of 4, 2 and 1 pixels the same way.
inline constexpr int kSearchReach = 4 + 2 + 1;

/// Vectors of NumY × NumX blocks, neither 0; the contract of Block_Match_TSS_. Reads the block patches of both
/// images, BlockSize rows of BlockSize rounded up to 8 pixels, and those up to kSearchReach pixels around in
/// ImageOld, as the search goes. For block sizes up to 179 a sum stays below 2^31.
using BlockMatch = void(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector,
                        DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX, DATA_32 EndX);

/// 4 × NumY × NumX sums, neither count 0, from 24 × NumY × NumX vector components, modulo 256.
using Histogram = void(const INTE_08* Vector, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX);

/// Length values, divided by 128; exact.
using Conversion = void(const INTE_08* Input, real_32* Output, DATA_32 Length);

/// The score. Every hidden sum adds its rounded products in the order of the inputs; the output sum is one
/// fused step a hidden node, in the order of the nodes.
using Scoring = real_32(const REAL_32* Feature, const REAL_32* Weight, DATA_32 Inputs, DATA_32 Hiddens);

/// Fills Output, CropY packed rows of CropX pixels, neither 0, from Input, the first sampled pixel, with RowStep bytes
/// from one source row to the next (negative: upwards). Reads the sampled pixels and what lies between the
/// first and the last one of a row. Input and Output may be the same buffer when the patterns' Output is 1
/// and no output pixel lies behind the pixel that it copies: later reads then see no earlier write.
using Resampling = void(const DATA_08* Input, std::ptrdiff_t RowStep, const Pattern& Rows,
                        const Pattern& Columns, data_08* Output, DATA_32 CropY, DATA_32 CropX);

/// In place, left to right, top to bottom, each window seeing the results before it. 2 × Border < Width,
/// Height; Border is at least 1 for the median and 2 for the Gaussian.
using InPlaceFilter = void(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height);

/// Medians of unfiltered windows; rows, cols > 2.
using SeparateFilter = void(const DATA_08* image, int rows, int cols, data_08* filteredimage);

/// Image[i] ^= Mark[i] for the first Width bytes of Height rows, which start EndX bytes apart in Image and
/// follow one another in Mark; in order: Mark may overlap Image.
using RowMarking = void(data_08* Image, const DATA_08* Mark, DATA_32 Height, DATA_32 Width, DATA_32 EndX);

/// Exchanges two rows of Width bytes, by way of Buffer or without it.
using RowExchange = void(data_08* LineA, data_08* LineB, data_08* Buffer, DATA_32 Width);

#define STOPNGO_FIELD(Record, Form, Contract) Contract* Form;
/// A form of every kernel.
struct KernelTable {
  const char* Name;
  STOPNGO_KERNELS(STOPNGO_FIELD, KernelTable)
};
#undef STOPNGO_FIELD

/// The table in force. Read through Kernels(), set by ForceKernels() alone.
[[gnu::visibility("hidden")]] extern const KernelTable* KernelsInForce;

/// The kernels in force: the fastest forms that this processor runs, as found when the module is loaded.
inline const KernelTable& Kernels() { return *KernelsInForce; }

/// Every table that this processor runs, plain forms first, fastest last: for tests and benchmarks.
std::span<const KernelTable> AvailableKernels();

/// Puts a table in force (null: the fastest again): for tests of whole detectors.
void ForceKernels(const KernelTable* Table);
