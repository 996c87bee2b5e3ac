// match.cpp: motion vectors of blocks.
#include "match.h"

#include <limits>

#include "kernels/kernels.h"
#include "saturate.h"
#include "vel_stopngo.h"

/// Positions are linear offsets, so the first block bounds the reads from below and the last one from above.
MatchExtent ExtentOfMatch(DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (NumY == 0 || NumX == 0 || BlockSize == 0) return {0, 0};
  const std::uint64_t RowLength = EndX;
  const std::uint64_t FirstBlock = BlockSize * RowLength + BlockSize;
  // The search leaves the block in the old image alone, on both axes.
  const std::uint64_t Reach = kSearchReach * RowLength + kSearchReach;
  constexpr std::uint64_t kNowhere = std::numeric_limits<std::uint64_t>::max();
  if (FirstBlock < Reach) return {kNowhere, kNowhere};
  const std::uint64_t Runs = (std::uint64_t{BlockSize} + 7) / 8 * 8;
  const std::uint64_t LastRow = SaturatingMultiply(NumY, BlockSize);
  const std::uint64_t LastColumn = SaturatingMultiply(NumX, BlockSize);
  const std::uint64_t LastBlock = SaturatingAdd(SaturatingMultiply(LastRow, RowLength), LastColumn);
  const std::uint64_t LastPatch = SaturatingAdd(LastBlock, (BlockSize - 1) * RowLength + Runs);
  return {SaturatingAdd(LastPatch, Reach), LastPatch};
}

extern "C" void Block_Match_TSS_(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector,
                                 DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (ImageOld == nullptr || ImageNew == nullptr || MotionVector == nullptr) return;
  if (NumY == 0 || NumX == 0) return;
  Kernels().MatchBlocks(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
}
