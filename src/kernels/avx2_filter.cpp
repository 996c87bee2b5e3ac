// avx2_filter.cpp: the three filters with AVX2, 32 pixels or 16 rows at a time.
#include "forms.h"
#include "sse41_words.h"
#include "v128.h"

STOPNGO_TARGET_BEGIN("avx2")
namespace avx2 {
namespace {

// ---- The operations of v128.h, on 32 bytes ----

constexpr int kBytes = 32;

using Bytes = __m256i;

STOPNGO_INLINE Bytes Load(const data_08* From) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(From));
}
STOPNGO_INLINE void Store(data_08* To, Bytes v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(To), v); }
STOPNGO_INLINE Bytes Broadcast(data_08 Value) { return _mm256_set1_epi8(static_cast<char>(Value)); }
STOPNGO_INLINE Bytes Min(Bytes a, Bytes b) { return _mm256_min_epu8(a, b); }
STOPNGO_INLINE Bytes Max(Bytes a, Bytes b) { return _mm256_max_epu8(a, b); }
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

// ---- Those of sse41_words.h, on 16 words ----

constexpr int kWords = 16;

using Words = __m256i;

STOPNGO_INLINE Words LoadWords(const unsigned short* From) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(From));
}
STOPNGO_INLINE void StoreWords(unsigned short* To, Words v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(To), v);
}
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
STOPNGO_INLINE __m256i LoadSquares(const data_08* const* From) {
  const __m256i Low = _mm256_castsi128_si256(v128::LoadSquare(From));
  return _mm256_inserti128_si256(Low, v128::LoadSquare(From + 8), 1);
}
STOPNGO_INLINE void StoreSquares(__m256i v, data_08* const* To) {
  v128::StoreSquare(_mm256_castsi256_si128(v), To);
  v128::StoreSquare(_mm256_extracti128_si256(v, 1), To + 8);
}
STOPNGO_INLINE void WidenTile(const data_08* const* From, Words* Column) {
  const __m256i Order =
      _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
  const __m256i A = _mm256_shuffle_epi8(LoadSquares(From), Order);
  const __m256i B = _mm256_shuffle_epi8(LoadSquares(From + 4), Order);
  const __m256i Lower = _mm256_unpacklo_epi32(A, B);
  const __m256i Upper = _mm256_unpackhi_epi32(A, B);
  const __m256i Zero = _mm256_setzero_si256();
  Column[0] = _mm256_unpacklo_epi8(Lower, Zero);
  Column[1] = _mm256_unpackhi_epi8(Lower, Zero);
  Column[2] = _mm256_unpacklo_epi8(Upper, Zero);
  Column[3] = _mm256_unpackhi_epi8(Upper, Zero);
}
STOPNGO_INLINE void NarrowTile(const Words* Column, data_08* const* To) {
  const __m256i A = _mm256_or_si256(Column[0], _mm256_slli_epi16(Column[1], 8));
  const __m256i B = _mm256_or_si256(Column[2], _mm256_slli_epi16(Column[3], 8));
  StoreSquares(_mm256_unpacklo_epi16(A, B), To);
  StoreSquares(_mm256_unpackhi_epi16(A, B), To + 4);
}
using v128::WidenPair;

#include "gaussian.inc"
#include "median.inc"

}  // namespace

void MedianInPlace(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  if (Width - 2 * Border < kBytes) return sse41::MedianInPlace(Image, Border, Width, Height);
  FilterRows(Image, Border, Width, Height);
}

void GaussianInPlace(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  if (!SuitsWavefront(Border, Width)) return sse41::GaussianInPlace(Image, Border, Width, Height);
  RunWavefront(Image, Border, Width, Height);
}

void MedianSeparate(const DATA_08* image, int rows, int cols, data_08* filteredimage) {
  if (cols - 2 < kBytes) return sse41::MedianSeparate(image, rows, cols, filteredimage);
  MedianRows(image, static_cast<std::size_t>(rows), static_cast<std::size_t>(cols), filteredimage);
}

}  // namespace avx2
STOPNGO_TARGET_END
