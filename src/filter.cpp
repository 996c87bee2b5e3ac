// filter.cpp: the smoothing filters: two in place, for the analysis buffer, one with its own output.
#include "filter.h"

#include <cstdint>

#include "kernels/kernels.h"
#include "vel_stopngo.h"

namespace {

/// What a filter in place keeps off the sides: the given border, or what its window asks for.
struct Margin {
  DATA_32 Border;
  DATA_32 LeastSide;  ///< an image with a shorter side is left alone, whatever the border

  /// Whether it leaves pixels to visit.
  [[nodiscard]] bool LeavesRoom(DATA_32 Width, DATA_32 Height) const {
    const std::uint64_t Borders = 2 * std::uint64_t{Border};
    return Width >= LeastSide && Height >= LeastSide && Borders < Width && Borders < Height;
  }
};

Margin MedianMargin(int Skip) {
  constexpr DATA_32 window_size = 3;
  return {Skip > 0 ? static_cast<DATA_32>(Skip) : 1, window_size + 1};
}

Margin GaussianMargin(data_32 Skip) { return {Skip >= 2 ? Skip : 2, 1}; }

}  // namespace

bool FilterRuns(INTE_32 Filter, DATA_32 Width, DATA_32 Height) {
  return (Filter == 1 && MedianMargin(0).LeavesRoom(Width, Height)) ||
         (Filter == 2 && GaussianMargin(0).LeavesRoom(Width, Height));
}

void RunFilter(INTE_32 Filter, data_08* Image, DATA_32 Width, DATA_32 Height) {
  if (Filter == 1) image_median_filter(Image, 0, Width, Height);
  if (Filter == 2) image_gaussian_blur_filter(Image, 0, Width, Height);
}

extern "C" {

void image_median_filter(data_08* Image, int Skip, DATA_32 Width, DATA_32 Height) {
  const Margin Keep = MedianMargin(Skip);
  if (Image == nullptr || !Keep.LeavesRoom(Width, Height)) return;
  Kernels().MedianInPlace(Image, Keep.Border, Width, Height);
}

void image_gaussian_blur_filter(data_08* Image, data_32 Skip, DATA_32 Width, DATA_32 Height) {
  const Margin Keep = GaussianMargin(Skip);
  if (Image == nullptr || !Keep.LeavesRoom(Width, Height)) return;
  Kernels().GaussianInPlace(Image, Keep.Border, Width, Height);
}

int median_filter(const data_08* image, int rows, int cols, data_08* filteredimage) {
  if (image != nullptr && filteredimage != nullptr && rows > 2 && cols > 2) {
    Kernels().MedianSeparate(image, rows, cols, filteredimage);
  }
  return 0;
}

}  // extern "C"
