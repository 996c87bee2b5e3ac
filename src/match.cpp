// match.cpp: motion vectors of blocks.
#include "match.h"

#include <cstring>
#include <limits>

#include "kernels/kernels.h"
#include "saturate.h"
#include "vel_stopngo.h"

/// Positions are linear offsets, so the first block bounds the reads from below and the last one from above.
bool SearchStaysInside(const MatchImages& Images, DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX,
                       DATA_32 EndX) {
  if (NumY == 0 || NumX == 0 || BlockSize == 0) return true;
  const std::uint64_t RowLength = EndX;
  const std::uint64_t FirstBlock = BlockSize * RowLength + BlockSize;
  // The search leaves the block in the old image alone, on both axes.
  const std::uint64_t Reach = kSearchReach * RowLength + kSearchReach;
  if (FirstBlock < Reach) return false;
  const std::uint64_t Runs = (std::uint64_t{BlockSize} + 7) / 8 * 8;
  const std::uint64_t LastRow = SaturatingMultiply(NumY, BlockSize);
  const std::uint64_t LastColumn = SaturatingMultiply(NumX, BlockSize);
  const std::uint64_t LastBlock = SaturatingAdd(SaturatingMultiply(LastRow, RowLength), LastColumn);
  const std::uint64_t LastPatch = SaturatingAdd(LastBlock, (BlockSize - 1) * RowLength + Runs);
  const std::uint64_t Farthest = SaturatingAdd(LastPatch, Reach);
  // What has reached the largest number may be more than it.
  return Farthest < std::numeric_limits<std::uint64_t>::max() && Farthest <= Images.Old &&
         LastPatch <= Images.New;
}

void MatchMotion(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                 DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (NumY == 0 || NumX == 0) return;
  Kernels().MatchBlocks(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
}

extern "C" void Block_Match_TSS_(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector,
                                 DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (ImageOld == nullptr || ImageNew == nullptr || MotionVector == nullptr) return;
  // The grid with one block of margin on every side; nothing here says how large the images are.
  const std::uint64_t Rows = SaturatingMultiply(std::uint64_t{NumY} + 2, BlockSize);
  const std::uint64_t Bytes = SaturatingMultiply(Rows, EndX);
  if (BlockSize > 0 && SearchStaysInside({Bytes, Bytes}, BlockSize, NumY, NumX, EndX)) {
    MatchMotion(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
  } else {
    std::memset(MotionVector, 0, std::size_t{2} * NumY * NumX);
  }
}
