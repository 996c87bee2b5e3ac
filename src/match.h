// match.h: how far block matching reads.
#pragma once

#include <cstdint>

#include "bitclip.h"

/// Bytes from the start of each image up to the end of the last pixel that matching reads.
struct MatchExtent {
  std::uint64_t Old, New;
};

/// 0 when nothing is read, the largest number when pixels before an image's first one would be. Never too small.
MatchExtent ExtentOfMatch(DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX, DATA_32 EndX);
