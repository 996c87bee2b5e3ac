// match.h: block matching, and how far it reads.
#pragma once

#include <cstdint>

#include "bitclip.h"

/// Bytes of the two images that matching reads.
struct MatchImages {
  std::uint64_t Old, New;
};

/// Whether every pixel that the search may read lies inside images of so many bytes. No images are large enough
/// for a search that starts before their first pixel.
bool SearchStaysInside(const MatchImages& Images, DATA_32 BlockSize, DATA_32 NumY, DATA_32 NumX,
                       DATA_32 EndX);

/// Block_Match_TSS_ without its questions, for a search that stays inside.
void MatchMotion(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                 DATA_32 NumY, DATA_32 NumX, DATA_32 EndX);
