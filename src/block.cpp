// block.cpp: motion vectors of blocks, and their histogram by cell.
#include "kernels/kernels.h"
#include "vel_stopngo.h"

extern "C" {

void Block_Match_TSS_(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector,
                      DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (ImageOld == nullptr || ImageNew == nullptr || MotionVector == nullptr) return;
  if (NumY == 0 || NumX == 0) return;
  Kernels().block_match(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
}

void Block_Local_Histogram_(const INTE_08* Vector, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX) {
  if (Vector == nullptr || Chunk == nullptr || NumY == 0 || NumX == 0) return;
  Kernels().histogram(Vector, Chunk, NumY, NumX);
}

}  // extern "C"
