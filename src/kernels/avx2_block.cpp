// avx2_block.cpp: block matching and histogram with vectors of 32 bytes.
#include <immintrin.h>

#include <algorithm>
#include <cstddef>

#include "block_step.h"
#include "forms.h"
#include "target.h"

STOPNGO_TARGET_BEGIN("avx2")

namespace avx2 {
namespace {

using block_step::Progress;

/// Blocks that take each step together: their steps do not wait for one another, which hides the time
/// from the last pixel of a step to the first one of the next.
constexpr int kGroup = 16;

/// Sixteen pixels, or eight and zeros, which add nothing to an error.
template <int Pixels>
[[gnu::always_inline]] inline __m256i Widen(const DATA_08* p) {
  const auto* v = reinterpret_cast<const __m128i*>(p);
  return _mm256_cvtepu8_epi16(Pixels == 16 ? _mm_loadu_si128(v) : _mm_loadl_epi64(v));
}

template <int Pixels>
[[gnu::always_inline]] inline void Add(__m256i& Sum, __m256i New, const DATA_08* Old) {
  const __m256i Difference = _mm256_sub_epi16(New, Widen<Pixels>(Old));
  Sum = _mm256_add_epi32(Sum, _mm256_madd_epi16(Difference, Difference));
}

/// What a search goes by: a patch is BlockSize rows of BlockSize pixels rounded up to eight.
struct Patch {
  std::size_t BlockSize, EndX;
};

/// Adds some columns of the eight neighbours of Old, Step pixels around.
template <int Pixels, int Step>
[[gnu::always_inline]] inline void AddNeighbours(__m256i (&Sum)[8], const Patch& Size, const DATA_08* Old,
                                                 const DATA_08* New) {
  const DATA_08* Above = Old - Step * Size.EndX;
  const DATA_08* Below = Old + Step * Size.EndX;
  for (std::size_t Row = 0; Row < Size.BlockSize; ++Row) {
    const __m256i n = Widen<Pixels>(New);
    Add<Pixels>(Sum[0], n, Above - Step);
    Add<Pixels>(Sum[1], n, Above);
    Add<Pixels>(Sum[2], n, Above + Step);
    Add<Pixels>(Sum[3], n, Old - Step);
    Add<Pixels>(Sum[4], n, Old + Step);
    Add<Pixels>(Sum[5], n, Below - Step);
    Add<Pixels>(Sum[6], n, Below);
    Add<Pixels>(Sum[7], n, Below + Step);
    New += Size.EndX;
    Above += Size.EndX;
    Old += Size.EndX;
    Below += Size.EndX;
  }
}

/// The sums of the lanes of eight vectors, in their order.
[[gnu::always_inline]] inline __m256i Totals(const __m256i (&S)[8]) {
  const __m256i a = _mm256_hadd_epi32(_mm256_hadd_epi32(S[0], S[1]), _mm256_hadd_epi32(S[2], S[3]));
  const __m256i b = _mm256_hadd_epi32(_mm256_hadd_epi32(S[4], S[5]), _mm256_hadd_epi32(S[6], S[7]));
  return _mm256_add_epi32(_mm256_permute2x128_si256(a, b, 0x20), _mm256_permute2x128_si256(a, b, 0x31));
}

inte_32 Least(__m256i Keys) {
  __m128i m = _mm_min_epi32(_mm256_castsi256_si128(Keys), _mm256_extracti128_si256(Keys, 1));
  m = _mm_min_epi32(m, _mm_shuffle_epi32(m, 0x4E));
  m = _mm_min_epi32(m, _mm_shuffle_epi32(m, 0xB1));
  return _mm_cvtsi128_si32(m);
}

/// One step of one block. Columns: the pixels of a patch's row.
template <int Columns, int Step>
void Search(const Patch& Size, const DATA_08* Old, const DATA_08* New, Progress& Block) {
  Old += Block.Y * static_cast<std::ptrdiff_t>(Size.EndX) + Block.X;
  __m256i Sum[8] = {};
  if constexpr (Columns >= 16) AddNeighbours<16, Step>(Sum, Size, Old, New);
  if constexpr (Columns == 32) AddNeighbours<16, Step>(Sum, Size, Old + 16, New + 16);
  if constexpr (Columns % 16 != 0) AddNeighbours<8, Step>(Sum, Size, Old + Columns - 8, New + Columns - 8);
  const __m256i Places = _mm256_setr_epi32(1, 2, 3, 4, 5, 6, 7, 8);
  const __m256i Keys = _mm256_or_si256(_mm256_slli_epi32(Totals(Sum), block_step::kPlaceBits), Places);
  Block.Move(std::min(Least(Keys), Block.Key), Step);
}

template <int Columns>
inte_32 CentreKey(const Patch& Size, const DATA_08* Old, const DATA_08* New) {
  __m256i Sum = _mm256_setzero_si256();
  for (std::size_t Row = 0; Row < Size.BlockSize; ++Row, Old += Size.EndX, New += Size.EndX) {
    if constexpr (Columns >= 16) Add<16>(Sum, Widen<16>(New), Old);
    if constexpr (Columns == 32) Add<16>(Sum, Widen<16>(New + 16), Old + 16);
    if constexpr (Columns % 16 != 0) Add<8>(Sum, Widen<8>(New + Columns - 8), Old + Columns - 8);
  }
  __m128i s = _mm_add_epi32(_mm256_castsi256_si128(Sum), _mm256_extracti128_si256(Sum, 1));
  s = _mm_add_epi32(s, _mm_shuffle_epi32(s, 0x4E));
  s = _mm_add_epi32(s, _mm_shuffle_epi32(s, 0xB1));
  return _mm_cvtsi128_si32(s) * (1 << block_step::kPlaceBits);
}

template <int Columns>
void MatchGroup(const Patch& Size, const DATA_08* Old, const DATA_08* New, int Count, inte_08* Motion) {
  Progress Blocks[kGroup];
  const std::size_t Pitch = Size.BlockSize;
  for (int b = 0; b < Count; ++b)
    Blocks[b] = {CentreKey<Columns>(Size, Old + b * Pitch, New + b * Pitch), 0, 0};
  for (int b = 0; b < Count; ++b) Search<Columns, 4>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Search<Columns, 2>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Search<Columns, 1>(Size, Old + b * Pitch, New + b * Pitch, Blocks[b]);
  for (int b = 0; b < Count; ++b) Blocks[b].Store(Motion + 2 * b);
}

/// By the runs of eight pixels in a patch's row, less one.
using GroupMatch = void(const Patch&, const DATA_08*, const DATA_08*, int, inte_08*);
constexpr GroupMatch* kGroupMatches[] = {MatchGroup<8>, MatchGroup<16>, MatchGroup<24>, MatchGroup<32>};

}  // namespace

void MatchBlocks(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                 DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (BlockSize == 0 || BlockSize > block_step::kLargestBlock) {
    generic::MatchBlocks(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
    return;
  }
  const Patch Size = {BlockSize, EndX};
  GroupMatch* const Match = kGroupMatches[(BlockSize - 1) / 8];
  for (DATA_32 y = 0; y < NumY && NumX > 0; ++y) {
    const std::size_t RowOffset = (std::size_t{y} + 1) * BlockSize * EndX;
    for (DATA_32 x = 0; x < NumX;) {
      const DATA_32 Count = std::min<DATA_32>(NumX - x, kGroup);
      const std::size_t Offset = RowOffset + (std::size_t{x} + 1) * BlockSize;
      Match(Size, ImageOld + Offset, ImageNew + Offset, static_cast<int>(Count), MotionVector);
      MotionVector += 2 * std::size_t{Count};
      x += Count;
    }
  }
}

namespace {

constexpr std::size_t kCells = 4;

/// Four cells of a row; a cell's row of four vectors is eight bytes.
[[gnu::always_inline]] inline void SumCells(const INTE_08* Vector, std::size_t RowStep, inte_08* Chunk) {
  const __m256i Zero = _mm256_setzero_si256();
  __m256i Positive = Zero;
  __m256i Negative = Zero;
#pragma GCC unroll 3
  for (int Row = 0; Row < 3; ++Row, Vector += RowStep) {
    const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(Vector));
    Positive = _mm256_add_epi8(Positive, _mm256_max_epi8(v, Zero));
    Negative = _mm256_sub_epi8(Negative, _mm256_min_epi8(v, Zero));
  }
  // Each half of a cell gets the sums of one sign: first two by two vectors, then in all.
  Positive = _mm256_add_epi8(Positive, _mm256_srli_epi64(Positive, 32));
  Negative = _mm256_add_epi8(Negative, _mm256_slli_epi64(Negative, 32));
  __m256i Sum = _mm256_blend_epi32(Positive, Negative, 0xAA);
  Sum = _mm256_add_epi8(Sum, _mm256_srli_epi32(Sum, 16));
  const __m256i LowWords = _mm256_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1, 0, 1, 4,
                                            5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1);
  Sum = _mm256_permute4x64_epi64(_mm256_shuffle_epi8(Sum, LowWords), 0x08);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(Chunk), _mm256_castsi256_si128(Sum));
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

}  // namespace avx2

STOPNGO_TARGET_END
