// v256.h: vectors of 32 bytes for the files of AVX2 and beyond: the operations of v128.h and sse41_words.h on
// two halves of 16, how halves come together, and sums over lanes.
#pragma once

#include "sse41_words.h"
#include "v128.h"

STOPNGO_TARGET_BEGIN("avx2")

namespace v256 {

// ---- Bytes ----

constexpr int kBytes = 32;

using Bytes = __m256i;

STOPNGO_INLINE Bytes Load(const void* From) { return _mm256_loadu_si256(static_cast<const __m256i*>(From)); }
STOPNGO_INLINE void Store(void* To, Bytes v) { _mm256_storeu_si256(static_cast<__m256i*>(To), v); }
STOPNGO_INLINE Bytes Join(__m128i Low, __m128i High) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(Low), High, 1);
}
STOPNGO_INLINE __m128i Low(Bytes v) { return _mm256_castsi256_si128(v); }
STOPNGO_INLINE __m128i High(Bytes v) { return _mm256_extracti128_si256(v, 1); }
STOPNGO_INLINE Bytes Broadcast(data_08 Value) { return _mm256_set1_epi8(static_cast<char>(Value)); }
STOPNGO_INLINE Bytes Min(Bytes a, Bytes b) { return _mm256_min_epu8(a, b); }
STOPNGO_INLINE Bytes Max(Bytes a, Bytes b) { return _mm256_max_epu8(a, b); }
STOPNGO_INLINE Bytes Xor(Bytes a, Bytes b) { return _mm256_xor_si256(a, b); }
template <int Half>
STOPNGO_INLINE Bytes LastLane(Bytes v) {
  // The shuffle first: both halves can share it.
  const Bytes Last = _mm256_shuffle_epi8(v, _mm256_set1_epi8(15));
  return _mm256_permute2x128_si256(Last, Last, Half == 0 ? 0x00 : 0x11);
}
STOPNGO_INLINE Bytes LowerHalf(Bytes Lower, Bytes Upper) { return _mm256_blend_epi32(Lower, Upper, 0xF0); }
template <int N>
STOPNGO_INLINE Bytes MoveUp(Bytes v, Bytes Fill) {
  return _mm256_alignr_epi8(v, Fill, (16 - N) % 16);
}

// ---- Pixels as words ----

/// Sixteen pixels.
STOPNGO_INLINE __m256i Widen(const DATA_08* p) { return _mm256_cvtepu8_epi16(v128::Load(p)); }

constexpr int kWords = 16;

using Words = __m256i;

STOPNGO_INLINE Words LoadWords(const unsigned short* From) { return Load(From); }
STOPNGO_INLINE void StoreWords(unsigned short* To, Words v) { Store(To, v); }
STOPNGO_INLINE Words Add(Words a, Words b) { return _mm256_add_epi16(a, b); }
STOPNGO_INLINE Words Times(Words a, Words b) { return _mm256_mullo_epi16(a, b); }
STOPNGO_INLINE Words Constant(data_32 Value) {
  Words v = _mm256_set1_epi16(static_cast<short>(Value));
  asm("" : "+x"(v));
  return v;
}
STOPNGO_INLINE Words Select(Words Mask, Words a, Words b) { return _mm256_blendv_epi8(b, a, Mask); }
STOPNGO_INLINE Words Either(Words a, Words b) { return _mm256_or_si256(a, b); }
STOPNGO_INLINE Words Quotient1590(Words Sum, Words Left) {
  asm("" : "+x"(Sum));
  const Words Product =
      _mm256_mulhi_epu16(_mm256_add_epi16(Sum, Left), _mm256_set1_epi16(static_cast<short>(42207)));
  return _mm256_srli_epi16(Product, 10);
}
STOPNGO_INLINE Words BroadcastPair(data_32 Pair) { return _mm256_set1_epi32(static_cast<int>(Pair)); }
template <int N>
STOPNGO_INLINE Words MoveRowsDown(Words v, Words Edge) {
  return _mm256_alignr_epi8(v, _mm256_permute2x128_si256(Edge, v, 0x21), 16 - 2 * N);
}
STOPNGO_INLINE Words LaneMask(data_32 Lane) {
  const Words Lanes = _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  return _mm256_cmpeq_epi16(Lanes, _mm256_set1_epi16(static_cast<short>(Lane)));
}
/// Two squares of rows, eight rows apart, in the halves of a vector.
STOPNGO_INLINE Bytes LoadSquares(const data_08* const* From) {
  const __m128i Upper = v128::LoadSquare(From);
  return Join(Upper, v128::LoadSquare(From + 8));
}
STOPNGO_INLINE void StoreSquares(Bytes v, data_08* const* To) {
  v128::StoreSquare(Low(v), To);
  v128::StoreSquare(High(v), To + 8);
}
STOPNGO_INLINE void WidenTile(const data_08* const* From, Words* Column) {
  const Bytes Order =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
  const Bytes A = _mm256_shuffle_epi8(LoadSquares(From), Order);
  const Bytes B = _mm256_shuffle_epi8(LoadSquares(From + 4), Order);
  const Bytes Lower = _mm256_unpacklo_epi32(A, B);
  const Bytes Upper = _mm256_unpackhi_epi32(A, B);
  const Bytes Zero = _mm256_setzero_si256();
  Column[0] = _mm256_unpacklo_epi8(Lower, Zero);
  Column[1] = _mm256_unpackhi_epi8(Lower, Zero);
  Column[2] = _mm256_unpacklo_epi8(Upper, Zero);
  Column[3] = _mm256_unpackhi_epi8(Upper, Zero);
}
STOPNGO_INLINE void NarrowTile(const Words* Column, data_08* const* To) {
  const Words A = Either(Column[0], _mm256_slli_epi16(Column[1], 8));
  const Words B = Either(Column[2], _mm256_slli_epi16(Column[3], 8));
  StoreSquares(_mm256_unpacklo_epi16(A, B), To);
  StoreSquares(_mm256_unpackhi_epi16(A, B), To + 4);
}
using v128::WidenPair;

// ---- Eight 32-bit sums ----

STOPNGO_INLINE __m256i AddPairs(__m256i a, __m256i b) {
  return _mm256_add_epi32(_mm256_unpacklo_epi32(a, b), _mm256_unpackhi_epi32(a, b));
}
STOPNGO_INLINE __m256i AddQuads(__m256i a, __m256i b) {
  return _mm256_add_epi32(_mm256_unpacklo_epi64(a, b), _mm256_unpackhi_epi64(a, b));
}
/// The sums of the lanes of eight vectors, in their order: a transposition that adds as it goes.
STOPNGO_INLINE __m256i Totals(const __m256i (&S)[8]) {
  const __m256i a = AddQuads(AddPairs(S[0], S[1]), AddPairs(S[2], S[3]));
  const __m256i b = AddQuads(AddPairs(S[4], S[5]), AddPairs(S[6], S[7]));
  return _mm256_add_epi32(_mm256_permute2x128_si256(a, b, 0x20), _mm256_permute2x128_si256(a, b, 0x31));
}
STOPNGO_INLINE inte_32 Total(__m256i Sum) {
  __m128i s = _mm_add_epi32(Low(Sum), High(Sum));
  s = _mm_add_epi32(s, _mm_shuffle_epi32(s, 0x4E));
  s = _mm_add_epi32(s, _mm_shuffle_epi32(s, 0xB1));
  return _mm_cvtsi128_si32(s);
}
STOPNGO_INLINE inte_32 Least(__m256i Values) {
  __m128i m = _mm_min_epi32(Low(Values), High(Values));
  m = _mm_min_epi32(m, _mm_shuffle_epi32(m, 0x4E));
  m = _mm_min_epi32(m, _mm_shuffle_epi32(m, 0xB1));
  return _mm_cvtsi128_si32(m);
}

}  // namespace v256

STOPNGO_TARGET_END
