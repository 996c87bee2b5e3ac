// sse41_words.h: rows as the lanes of eight 16-bit words, for gaussian.inc.
#pragma once

#include <cstddef>
#include <cstring>

#include "v128.h"

STOPNGO_TARGET_BEGIN("sse4.1")

namespace v128 {

constexpr int kWords = 8;

using Words = __m128i;

STOPNGO_INLINE Words LoadWords(const unsigned short* From) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(From));
}
STOPNGO_INLINE void StoreWords(unsigned short* To, Words v) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(To), v);
}
STOPNGO_INLINE Words Add(Words a, Words b) { return _mm_add_epi16(a, b); }
STOPNGO_INLINE Words Times(Words a, Words b) { return _mm_mullo_epi16(a, b); }
/// Value in every lane, and the compiler does not know it.
STOPNGO_INLINE Words Constant(data_32 Value) {
  Words v = _mm_set1_epi16(static_cast<short>(Value));
  asm("" : "+x"(v));
  return v;
}
STOPNGO_INLINE Words Select(Words Mask, Words a, Words b) { return _mm_blendv_epi8(b, a, Mask); }
STOPNGO_INLINE Words Either(Words a, Words b) { return _mm_or_si128(a, b); }
/// floor((Sum + Left) / 1590): 42207 = (2^26 + 266) / 1590, and the excess 266 × 40545 stays below 2^26,
/// so nothing is carried over for any sum that can occur. Left comes last: a compiler that orders the sums
/// anew would add it early and make the chain from result to result longer.
STOPNGO_INLINE Words Quotient1590(Words Sum, Words Left) {
  asm("" : "+x"(Sum));
  return _mm_srli_epi16(_mm_mulhi_epu16(_mm_add_epi16(Sum, Left), _mm_set1_epi16(static_cast<short>(42207))),
                        10);
}
STOPNGO_INLINE Words BroadcastPair(data_32 Pair) { return _mm_set1_epi32(static_cast<int>(Pair)); }
/// Lane l gets lane l - N; the first N lanes get the last ones of Edge.
template <int N>
STOPNGO_INLINE Words MoveRowsDown(Words v, Words Edge) {
  return _mm_alignr_epi8(v, Edge, 16 - 2 * N);
}
STOPNGO_INLINE int LoadFour(const data_08* From) {
  int Four;
  std::memcpy(&Four, From, sizeof(Four));
  return Four;
}
STOPNGO_INLINE void StoreFour(data_08* To, int Four) { std::memcpy(To, &Four, sizeof(Four)); }
/// Four bytes of each of four rows.
STOPNGO_INLINE Bytes LoadSquare(const data_08* const* From) {
  Bytes v = _mm_cvtsi32_si128(LoadFour(From[0]));
  v = _mm_insert_epi32(v, LoadFour(From[1]), 1);
  v = _mm_insert_epi32(v, LoadFour(From[2]), 2);
  v = _mm_insert_epi32(v, LoadFour(From[3]), 3);
  return v;
}
STOPNGO_INLINE void StoreSquare(Bytes v, data_08* const* To) {
  StoreFour(To[0], _mm_cvtsi128_si32(v));
  StoreFour(To[1], _mm_extract_epi32(v, 1));
  StoreFour(To[2], _mm_extract_epi32(v, 2));
  StoreFour(To[3], _mm_extract_epi32(v, 3));
}
/// Four bytes of each of eight rows, to four columns.
STOPNGO_INLINE void WidenTile(const data_08* const* From, Words* Column) {
  const __m128i Order = _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
  const __m128i A = _mm_shuffle_epi8(LoadSquare(From), Order);
  const __m128i B = _mm_shuffle_epi8(LoadSquare(From + 4), Order);
  const __m128i Lower = _mm_unpacklo_epi32(A, B);
  const __m128i Upper = _mm_unpackhi_epi32(A, B);
  const __m128i Zero = _mm_setzero_si128();
  Column[0] = _mm_unpacklo_epi8(Lower, Zero);
  Column[1] = _mm_unpackhi_epi8(Lower, Zero);
  Column[2] = _mm_unpacklo_epi8(Upper, Zero);
  Column[3] = _mm_unpackhi_epi8(Upper, Zero);
}
STOPNGO_INLINE void NarrowTile(const Words* Column, data_08* const* To) {
  const __m128i A = _mm_or_si128(Column[0], _mm_slli_epi16(Column[1], 8));
  const __m128i B = _mm_or_si128(Column[2], _mm_slli_epi16(Column[3], 8));
  StoreSquare(_mm_unpacklo_epi16(A, B), To);
  StoreSquare(_mm_unpackhi_epi16(A, B), To + 4);
}
/// Four bytes of each of two rows as words, in pairs.
STOPNGO_INLINE void WidenPair(const data_08* First, const data_08* Second, data_32* Pair) {
  const __m128i a = _mm_cvtsi32_si128(LoadFour(First));
  const __m128i b = _mm_cvtsi32_si128(LoadFour(Second));
  const __m128i Words8 = _mm_cvtepu8_epi16(_mm_unpacklo_epi8(a, b));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(Pair), Words8);
}
/// All ones in one lane; in none for kWords.
STOPNGO_INLINE Words LaneMask(data_32 Lane) {
  return _mm_cmpeq_epi16(_mm_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7), _mm_set1_epi16(static_cast<short>(Lane)));
}

}  // namespace v128

STOPNGO_TARGET_END
