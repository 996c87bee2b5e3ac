// avx2_resample.cpp: resampling with AVX2, 32 pixels at a time.
#include "forms.h"
#include "resample_place.h"
#include "v256.h"

STOPNGO_TARGET_BEGIN("avx2")
namespace avx2 {
namespace {

using namespace v256;

using Place = SourcePlace<2>;

/// One shuffle for each of the sources: it gives 0 where another source has the byte.
template <int S>
struct Selector {
  Bytes Control[S];
};

/// The source vector of number s, for both halves.
STOPNGO_INLINE Bytes LoadSource(const data_08* Row, const Place& From, int s) {
  Row += kHalf * s;
  return Join(v128::Load(Row + From.Offset[0]), v128::Load(Row + From.Offset[1]));
}

/// Picks of source s become 0x70 … 0x7F, of which the shuffle takes the lower four bits; all others become
/// more than that, and so a 0.
STOPNGO_INLINE Bytes OfSource(Bytes Picks, int s) {
  const Bytes Within = _mm256_sub_epi8(Picks, _mm256_set1_epi8(static_cast<char>(kHalf * s)));
  return _mm256_adds_epu8(Within, _mm256_set1_epi8(0x70));
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
  Bytes Pixels = _mm256_shuffle_epi8(LoadSource(Row, From, 0), Select.Control[0]);
  if constexpr (S > 1) {
    Pixels = _mm256_or_si256(Pixels, _mm256_shuffle_epi8(LoadSource(Row, From, 1), Select.Control[1]));
  }
  if constexpr (S > 2) {
    Pixels = _mm256_or_si256(Pixels, _mm256_shuffle_epi8(LoadSource(Row, From, 2), Select.Control[2]));
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

}  // namespace avx2
STOPNGO_TARGET_END
