// sse41_block.cpp: block matching and histogram with vectors of 16 bytes.
#include <smmintrin.h>

#include <algorithm>
#include <cstddef>
#include <utility>

#include "block_step.h"
#include "forms.h"
#include "target.h"

STOPNGO_TARGET_BEGIN("sse4.1")

namespace sse41 {
namespace {

using Lanes = __m128i;

constexpr int kStrip = 8;

template <int Pixels, int Rows>
[[gnu::always_inline]] inline __m128i Widen(const DATA_08* p, std::size_t /*EndX*/) {
  return _mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}

[[gnu::always_inline]] inline void Add(__m128i& Sum, __m128i New, __m128i Old) {
  const __m128i Difference = _mm_sub_epi16(New, Old);
  Sum = _mm_add_epi32(Sum, _mm_madd_epi16(Difference, Difference));
}

/// The sums of the lanes of four vectors, in their order.
[[gnu::always_inline]] inline __m128i Totals(const __m128i* S) {
  return _mm_hadd_epi32(_mm_hadd_epi32(S[0], S[1]), _mm_hadd_epi32(S[2], S[3]));
}

__m128i Keys(__m128i Errors, __m128i Places) {
  return _mm_or_si128(_mm_slli_epi32(Errors, block_step::kPlaceBits), Places);
}

[[gnu::always_inline]] inline inte_32 LeastKey(const __m128i (&S)[8]) {
  __m128i m = _mm_min_epi32(Keys(Totals(S), _mm_setr_epi32(1, 2, 3, 4)),
                            Keys(Totals(S + 4), _mm_setr_epi32(5, 6, 7, 8)));
  m = _mm_min_epi32(m, _mm_shuffle_epi32(m, 0x4E));
  m = _mm_min_epi32(m, _mm_shuffle_epi32(m, 0xB1));
  return _mm_cvtsi128_si32(m);
}

[[gnu::always_inline]] inline void StoreTotals(data_32* Errors, const __m128i (&S)[8]) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(Errors), Totals(S));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(Errors + 4), Totals(S + 4));
}

inte_32 Total(__m128i Sum) {
  __m128i s = _mm_add_epi32(Sum, _mm_shuffle_epi32(Sum, 0x4E));
  s = _mm_add_epi32(s, _mm_shuffle_epi32(s, 0xB1));
  return _mm_cvtsi128_si32(s);
}

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

}  // namespace sse41

STOPNGO_TARGET_END
