// sse41_block.cpp: block matching and histogram with vectors of 16 bytes.
#include <smmintrin.h>

#include <algorithm>
#include <cstddef>

#include "block_step.h"
#include "forms.h"
#include "target.h"

STOPNGO_TARGET_BEGIN("sse4.1")

namespace sse41 {
namespace {

using block_step::Progress;

/// Blocks that take each step together: their steps do not wait for one another, which hides the time
/// from the last pixel of a step to the first one of the next.
constexpr int kGroup = 16;

[[gnu::always_inline]] inline __m128i Widen(const DATA_08* p) {
  return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}

[[gnu::always_inline]] inline void Add(__m128i& Sum, __m128i New, const DATA_08* Old) {
  const __m128i Difference = _mm_sub_epi16(New, Widen(Old));
  Sum = _mm_add_epi32(Sum, _mm_madd_epi16(Difference, Difference));
}

/// What a search goes by: a patch is BlockSize rows of BlockSize pixels rounded up to eight.
struct Patch {
  std::size_t BlockSize, EndX;
};

/// Adds eight columns of the eight neighbours of Old, Step pixels around.
template <int Step>
[[gnu::always_inline]] inline void AddNeighbours(__m128i (&Sum)[8], const Patch& Size, const DATA_08* Old,
                                                 const DATA_08* New) {
  const DATA_08* Above = Old - Step * Size.EndX;
  const DATA_08* Below = Old + Step * Size.EndX;
  for (std::size_t Row = 0; Row < Size.BlockSize; ++Row) {
    const __m128i n = Widen(New);
    Add(Sum[0], n, Above - Step);
    Add(Sum[1], n, Above);
    Add(Sum[2], n, Above + Step);
    Add(Sum[3], n, Old - Step);
    Add(Sum[4], n, Old + Step);
    Add(Sum[5], n, Below - Step);
    Add(Sum[6], n, Below);
    Add(Sum[7], n, Below + Step);
    New += Size.EndX;
    Above += Size.EndX;
    Old += Size.EndX;
    Below += Size.EndX;
  }
}

/// The sums of the lanes of four vectors, in their order.
[[gnu::always_inline]] inline __m128i Totals(const __m128i* S) {
  return _mm_hadd_epi32(_mm_hadd_epi32(S[0], S[1]), _mm_hadd_epi32(S[2], S[3]));
}

__m128i Keys(__m128i Errors, __m128i Places) {
  return _mm_or_si128(_mm_slli_epi32(Errors, block_step::kPlaceBits), Places);
}

template <int Step>
void Search(const Patch& Size, const DATA_08* Old, const DATA_08* New, Progress& Block) {
  Old += Block.Y * static_cast<std::ptrdiff_t>(Size.EndX) + Block.X;
  __m128i Sum[8] = {};
  for (std::size_t Column = 0; Column < Size.BlockSize; Column += 8)
    AddNeighbours<Step>(Sum, Size, Old + Column, New + Column);
  __m128i m = _mm_min_epi32(Keys(Totals(Sum), _mm_setr_epi32(1, 2, 3, 4)),
                            Keys(Totals(Sum + 4), _mm_setr_epi32(5, 6, 7, 8)));
  m = _mm_min_epi32(m, _mm_shuffle_epi32(m, 0x4E));
  m = _mm_min_epi32(m, _mm_shuffle_epi32(m, 0xB1));
  Block.Move(std::min(_mm_cvtsi128_si32(m), Block.Key), Step);
}

inte_32 CentreKey(const Patch& Size, const DATA_08* Old, const DATA_08* New) {
  __m128i Sum = _mm_setzero_si128();
  for (std::size_t Row = 0; Row < Size.BlockSize; ++Row, Old += Size.EndX, New += Size.EndX) {
    for (std::size_t Column = 0; Column < Size.BlockSize; Column += 8)
      Add(Sum, Widen(New + Column), Old + Column);
  }
  __m128i s = Sum;
  s = _mm_add_epi32(s, _mm_shuffle_epi32(s, 0x4E));
  s = _mm_add_epi32(s, _mm_shuffle_epi32(s, 0xB1));
  return _mm_cvtsi128_si32(s) * (1 << block_step::kPlaceBits);
}

void MatchGroup(const Patch& Size, const DATA_08* Old, const DATA_08* New, int Count, inte_08* Motion) {
  Progress Blocks[kGroup];
  const std::size_t Pitch = Size.BlockSize;
  for (int b = 0; b < Count; ++b) Blocks[b] = {CentreKey(Size, Old + b * Pitch, New + b * Pitch), 0, 0};
  for (int b = 0; b < Count; ++b) Search<4>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Search<2>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Search<1>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Blocks[b].Store(Motion + 2 * b);
}

}  // namespace

void MatchBlocks(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                 DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (BlockSize > block_step::kLargestBlock) {
    generic::MatchBlocks(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
    return;
  }
  const Patch Size = {BlockSize, EndX};
  for (DATA_32 y = 0; y < NumY && NumX > 0; ++y) {
    const std::size_t RowOffset = (std::size_t{y} + 1) * BlockSize * EndX;
    for (DATA_32 x = 0; x < NumX;) {
      const DATA_32 Count = std::min<DATA_32>(NumX - x, kGroup);
      const std::size_t Offset = RowOffset + (std::size_t{x} + 1) * BlockSize;
      MatchGroup(Size, ImageOld + Offset, ImageNew + Offset, static_cast<int>(Count), MotionVector);
      MotionVector += 2 * std::size_t{Count};
      x += Count;
    }
  }
}

namespace {

constexpr std::size_t kCells = 2;

/// Two cells of a row; a cell's row of four vectors is eight bytes.
[[gnu::always_inline]] inline void SumCells(const INTE_08* Vector, std::size_t RowStep, inte_08* Chunk) {
  const __m128i Zero = _mm_setzero_si128();
  __m128i Positive = Zero;
  __m128i Negative = Zero;
#pragma GCC unroll 3
  for (int Row = 0; Row < 3; ++Row, Vector += RowStep) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(Vector));
    Positive = _mm_add_epi8(Positive, _mm_max_epi8(v, Zero));
    Negative = _mm_sub_epi8(Negative, _mm_min_epi8(v, Zero));
  }
  // Each half of a cell gets the sums of one sign: first two by two vectors, then in all.
  Positive = _mm_add_epi8(Positive, _mm_srli_epi64(Positive, 32));
  Negative = _mm_add_epi8(Negative, _mm_slli_epi64(Negative, 32));
  __m128i Sum = _mm_blend_epi16(Positive, Negative, 0xCC);
  Sum = _mm_add_epi8(Sum, _mm_srli_epi32(Sum, 16));
  const __m128i LowWords = _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(Chunk), _mm_shuffle_epi8(Sum, LowWords));
}

}  // namespace

void SumDirections(const INTE_08* Vector, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX) {
  if (NumX < kCells) {
    generic::SumDirections(Vector, Chunk, NumY, NumX);
    return;
  }
  const std::size_t Last = NumX - kCells;
  const std::size_t RowStep = std::size_t{NumX} * 8;
  for (DATA_32 Row = 0; Row < NumY; ++Row, Vector += 3 * RowStep, Chunk += std::size_t{NumX} * 4) {
    for (std::size_t Cell = 0; Cell < Last; Cell += kCells)
      SumCells(Vector + Cell * 8, RowStep, Chunk + Cell * 4);
    SumCells(Vector + Last * 8, RowStep, Chunk + Last * 4);
  }
}

}  // namespace sse41

STOPNGO_TARGET_END
