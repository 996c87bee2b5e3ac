// neon_dotprod_block.cpp: block matching with NEON's dot product.
#include <arm_neon.h>

#include <cstddef>
#include <utility>

#include "block_step.h"
#include "forms.h"
#include "v128.h"

#if defined(__clang__)
STOPNGO_TARGET_BEGIN("dotprod")
#else
STOPNGO_TARGET_BEGIN("arch=armv8.2-a+dotprod")
#endif
namespace neon_dotprod {
namespace {

/// As instruction text: the headers of some compilers declare the intrinsic only when the whole file may
/// use it.
STOPNGO_INLINE uint32x4_t Accumulate(uint32x4_t Sum, uint8x16_t Old, uint8x16_t New) {
  const uint8x16_t d = vabdq_u8(Old, New);
  asm("udot %0.4s, %1.16b, %1.16b" : "+w"(Sum) : "w"(d));
  return Sum;
}

STOPNGO_INLINE uint32x4_t Start(uint8x16_t Old, uint8x16_t New) {
  return Accumulate(vdupq_n_u32(0), Old, New);
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

}  // namespace neon_dotprod
STOPNGO_TARGET_END
