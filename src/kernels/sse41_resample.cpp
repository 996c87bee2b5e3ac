// sse41_resample.cpp: resampling with SSE4.1's byte shuffle, 16 pixels at a time.
#include "forms.h"
#include "resample_place.h"
#include "v128.h"

STOPNGO_TARGET_BEGIN("sse4.1")
namespace sse41 {
namespace {

using v128::Bytes;
using v128::kBytes;
using v128::Load;
using v128::Store;

using Place = SourcePlace<1>;

/// One shuffle for each of the sources: it gives 0 where another source has the byte.
template <int S>
struct Selector {
  Bytes Control[S];
};

/// The source vector of number s.
STOPNGO_INLINE Bytes LoadSource(const data_08* Row, const Place& From, int s) {
  return Load(Row + From.Offset[0] + kHalf * s);
}

/// Picks of source s become 0x70 … 0x7F, of which the shuffle takes the lower four bits; all others become
/// more than that, and so a 0.
STOPNGO_INLINE Bytes OfSource(Bytes Picks, int s) {
  const Bytes Within = _mm_sub_epi8(Picks, _mm_set1_epi8(static_cast<char>(kHalf * s)));
  return _mm_adds_epu8(Within, _mm_set1_epi8(0x70));
}

template <int S>
STOPNGO_INLINE Selector<S> MakeSelector(Bytes Picks) {
  Selector<S> Select;
  for (int s = 0; s < S; ++s) Select.Control[s] = OfSource(Picks, s);
  return Select;
}

/// Written without a loop: compilers keep the shuffles in registers then.
template <int S>
STOPNGO_INLINE Bytes Gather(const data_08* Row, const Place& From, const Selector<S>& Select) {
  Bytes Pixels = _mm_shuffle_epi8(LoadSource(Row, From, 0), Select.Control[0]);
  if constexpr (S > 1) {
    Pixels = _mm_or_si128(Pixels, _mm_shuffle_epi8(LoadSource(Row, From, 1), Select.Control[1]));
  }
  if constexpr (S > 2) {
    Pixels = _mm_or_si128(Pixels, _mm_shuffle_epi8(LoadSource(Row, From, 2), Select.Control[2]));
  }
  return Pixels;
}

#include "resample.inc"

}  // namespace

void Resample(const DATA_08* Input, std::ptrdiff_t RowStep, const Pattern& Rows, const Pattern& Columns,
              data_08* Output, DATA_32 CropY, DATA_32 CropX) {
  if (ResampleVectors(Input, RowStep, Rows, Columns, Output, CropY, CropX)) return;
  generic::Resample(Input, RowStep, Rows, Columns, Output, CropY, CropX);
}

}  // namespace sse41
STOPNGO_TARGET_END
