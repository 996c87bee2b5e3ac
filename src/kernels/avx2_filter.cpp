// avx2_filter.cpp: the three filters with AVX2, 32 pixels or 16 rows at a time.
#include "forms.h"
#include "v256.h"

STOPNGO_TARGET_BEGIN("avx2")
namespace avx2 {
namespace {

using namespace v256;

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
