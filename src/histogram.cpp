// histogram.cpp: how much motion each cell of blocks has in each direction.
#include "kernels/kernels.h"
#include "vel_stopngo.h"

extern "C" void Block_Local_Histogram_(const INTE_08* Vector, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX) {
  if (Vector == nullptr || Chunk == nullptr || NumY == 0 || NumX == 0) return;
  Kernels().SumDirections(Vector, Chunk, NumY, NumX);
}
