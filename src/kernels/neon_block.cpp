// neon_block.cpp: block matching and histogram with NEON.
#include <arm_neon.h>

#include <cstddef>
#include <cstring>
#include <utility>

#include "block_step.h"
#include "forms.h"
#include "v128.h"

namespace neon {
namespace {

/// Squares fill 16 bits, so that each has to be widened before it is added.
STOPNGO_INLINE uint32x4_t Accumulate(uint32x4_t Sum, uint8x16_t Old, uint8x16_t New) {
  const uint8x16_t d = vabdq_u8(Old, New);
  return vpadalq_u16(vpadalq_u16(Sum, vmull_u8(vget_low_u8(d), vget_low_u8(d))), vmull_high_u8(d, d));
}

STOPNGO_INLINE uint32x4_t Start(uint8x16_t Old, uint8x16_t New) {
  const uint8x16_t d = vabdq_u8(Old, New);
  return vpadalq_u16(vpaddlq_u16(vmull_u8(vget_low_u8(d), vget_low_u8(d))), vmull_high_u8(d, d));
}

STOPNGO_INLINE uint32x4_t Accumulate(uint32x4_t Sum, uint8x8_t Old, uint8x8_t New) {
  const uint8x8_t d = vabd_u8(Old, New);
  return vpadalq_u16(Sum, vmull_u8(d, d));
}

#include "neon_match.inc"

}  // namespace

void MatchBlocks(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                 DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (MatchVectors(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX)) return;
  generic::MatchBlocks(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
}

// ---- Histogram ----

void SumDirections(const INTE_08* Vector, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX) {
  // A cell is 3 rows of 4 vectors, 8 bytes a row, and the rows of one cell lie this far apart.
  const std::size_t RowBytes = std::size_t{NumX} * 8;
  for (DATA_32 CellRow = 0; CellRow < NumY; ++CellRow, Vector += 2 * RowBytes) {
    for (DATA_32 Cell = 0; Cell < NumX; ++Cell, Vector += 8, Chunk += 4) {
      const int8x8_t Rows[3] = {vld1_s8(Vector), vld1_s8(Vector + RowBytes), vld1_s8(Vector + 2 * RowBytes)};
      const int8x8_t Zero = vdup_n_s8(0);
      uint8x8_t Positive = vdup_n_u8(0);
      uint8x8_t Negative = vdup_n_u8(0);
      for (const int8x8_t Row : Rows) {
        // Both modulo 256: the magnitude of -128 is the byte 128.
        Positive = vadd_u8(Positive, vreinterpret_u8_s8(vmax_s8(Row, Zero)));
        Negative = vsub_u8(Negative, vreinterpret_u8_s8(vmin_s8(Row, Zero)));
      }
      // A vector is two bytes: two foldings add the four vectors of each sign.
      const uint16x4_t p = vreinterpret_u16_u8(Positive);
      const uint16x4_t n = vreinterpret_u16_u8(Negative);
      uint8x8_t Sum = vadd_u8(vreinterpret_u8_u16(vzip1_u16(p, n)), vreinterpret_u8_u16(vzip2_u16(p, n)));
      Sum = vadd_u8(Sum, vext_u8(Sum, Sum, 4));
      const data_32 Cells = vget_lane_u32(vreinterpret_u32_u8(Sum), 0);
      std::memcpy(Chunk, &Cells, sizeof Cells);
    }
  }
}

}  // namespace neon
