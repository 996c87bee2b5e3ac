// avx2_block.cpp: block matching and histogram with vectors of 32 bytes.
#include <algorithm>
#include <cstddef>
#include <utility>

#include "block_step.h"
#include "forms.h"
#include "v256.h"

STOPNGO_TARGET_BEGIN("avx2")

namespace avx2 {
namespace {

using Lanes = __m256i;

constexpr int kStrip = 16;

template <int Pixels, int Rows>
[[gnu::always_inline]] inline __m256i Widen(const DATA_08* p, std::size_t EndX) {
  if constexpr (Pixels == 16) {
    return v256::Widen(p);
  } else {
    __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
    if constexpr (Rows == 2) {
      v = _mm_unpacklo_epi64(v, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + EndX)));
    }
    return _mm256_cvtepu8_epi16(v);
  }
}

[[gnu::always_inline]] inline void Add(__m256i& Sum, __m256i New, __m256i Old) {
  const __m256i Difference = _mm256_sub_epi16(New, Old);
  Sum = _mm256_add_epi32(Sum, _mm256_madd_epi16(Difference, Difference));
}

[[gnu::always_inline]] inline inte_32 LeastKey(const __m256i (&S)[8]) {
  const __m256i Places = _mm256_setr_epi32(1, 2, 3, 4, 5, 6, 7, 8);
  return v256::Least(_mm256_or_si256(_mm256_slli_epi32(v256::Totals(S), block_step::kPlaceBits), Places));
}

[[gnu::always_inline]] inline void StoreTotals(data_32* Errors, const __m256i (&S)[8]) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(Errors), v256::Totals(S));
}

using v256::Total;

constexpr std::size_t kCells = 4;

/// Four cells of a row; a cell's row of four vectors is eight bytes.
[[gnu::always_inline]] inline void SumCells(const INTE_08* Vector, std::size_t RowStep, inte_08* Chunk) {
  const __m256i Zero = _mm256_setzero_si256();
  __m256i Positive = Zero;
  __m256i Negative = Zero;
#pragma GCC unroll 3
  for (int Row = 0; Row < 3; ++Row, Vector += RowStep) {
    const __m256i v = v256::Load(Vector);
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
  _mm_storeu_si128(reinterpret_cast<__m128i*>(Chunk), v256::Low(Sum));
}

#include "block.inc"

}  // namespace

void MatchBlocks(const DATA_08* ImageOld, const DATA_08* ImageNew, inte_08* MotionVector, DATA_32 BlockSize,
                 DATA_32 NumY, DATA_32 NumX, DATA_32 EndX) {
  if (MatchVectors(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX)) return;
  generic::MatchBlocks(ImageOld, ImageNew, MotionVector, BlockSize, NumY, NumX, EndX);
}

void SumDirections(const INTE_08* Vector, inte_08* Chunk, DATA_32 NumY, DATA_32 NumX) {
  if (!SumVectors(Vector, Chunk, NumY, NumX)) generic::SumDirections(Vector, Chunk, NumY, NumX);
}

}  // namespace avx2

STOPNGO_TARGET_END
