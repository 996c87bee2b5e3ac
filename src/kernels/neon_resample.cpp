// neon_resample.cpp: resampling with NEON's table look-up, 16 pixels at a time.
#include "forms.h"
#include "resample_place.h"
#include "v128.h"

namespace neon {
namespace {

using v128::Bytes;
using v128::kBytes;
using v128::Load;
using v128::Store;

using Place = SourcePlace<1>;

/// The look-up takes tables of one to four vectors, so the picks are the selector.
template <int S>
struct Selector {
  Bytes Picks;
};

template <int S>
STOPNGO_INLINE Selector<S> MakeSelector(Bytes Picks) {
  return {Picks};
}

template <int S>
STOPNGO_INLINE Bytes Gather(const data_08* Row, const Place& From, const Selector<S>& Select) {
  const data_08* Pixel = Row + From.Offset[0];
  if constexpr (S == 1) {
    return vqtbl1q_u8(Load(Pixel), Select.Picks);
  } else if constexpr (S == 2) {
    return vqtbl2q_u8({{Load(Pixel), Load(Pixel + kHalf)}}, Select.Picks);
  } else {
    return vqtbl3q_u8({{Load(Pixel), Load(Pixel + kHalf), Load(Pixel + 2 * kHalf)}}, Select.Picks);
  }
}

#include "resample.inc"

}  // namespace

void Resample(const DATA_08* Input, std::ptrdiff_t RowStep, const Pattern& Rows, const Pattern& Columns,
              data_08* Output, DATA_32 CropY, DATA_32 CropX) {
  if (ResampleVectors(Input, RowStep, Rows, Columns, Output, CropY, CropX)) return;
  generic::Resample(Input, RowStep, Rows, Columns, Output, CropY, CropX);
}

}  // namespace neon
