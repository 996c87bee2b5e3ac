// sse41_filter.cpp: the three filters with SSE4.1, 16 pixels or 8 rows at a time.
#include "forms.h"
#include "sse41_words.h"
#include "v128.h"

STOPNGO_TARGET_BEGIN("sse4.1")
namespace sse41 {
namespace {

using namespace v128;

#include "gaussian.inc"
#include "median.inc"

}  // namespace

void MedianInPlace(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  if (Width - 2 * Border < kBytes) return generic::MedianInPlace(Image, Border, Width, Height);
  FilterRows(Image, Border, Width, Height);
}

void GaussianInPlace(data_08* Image, DATA_32 Border, DATA_32 Width, DATA_32 Height) {
  if (!SuitsWavefront(Border, Width)) return generic::GaussianInPlace(Image, Border, Width, Height);
  RunWavefront(Image, Border, Width, Height);
}

void MedianSeparate(const DATA_08* image, int rows, int cols, data_08* filteredimage) {
  if (cols - 2 < kBytes) return generic::MedianSeparate(image, rows, cols, filteredimage);
  MedianRows(image, static_cast<std::size_t>(rows), static_cast<std::size_t>(cols), filteredimage);
}

}  // namespace sse41
STOPNGO_TARGET_END
