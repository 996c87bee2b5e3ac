// import_filter.cpp: the smoothing filters: two in place, for the analysis buffer, one with its own output.
#include <cstdint>

#include "kernels/kernels.h"
#include "vel_stopngo.h"

namespace {

/// Whether a border of B on every side leaves pixels to visit.
bool LeavesRoom(DATA_32 B, DATA_32 Width, DATA_32 Height) {
  const std::uint64_t Borders = 2 * std::uint64_t{B};
  return Borders < Width && Borders < Height;
}

}  // namespace

extern "C" {

void image_median_filter(data_08* Image, int Skip, DATA_32 Width, DATA_32 Height) {
  constexpr DATA_32 window_size = 3;
  const DATA_32 B = Skip > 0 ? static_cast<DATA_32>(Skip) : 1;
  if (Image == nullptr || Width <= window_size || Height <= window_size) return;
  if (LeavesRoom(B, Width, Height)) Kernels().median_in_place(Image, B, Width, Height);
}

void image_gaussian_blur_filter(data_08* Image, data_32 Skip, DATA_32 Width, DATA_32 Height) {
  const DATA_32 B = Skip >= 2 ? Skip : 2;
  if (Image == nullptr) return;
  if (LeavesRoom(B, Width, Height)) Kernels().gaussian_in_place(Image, B, Width, Height);
}

int median_filter(const data_08* image, int rows, int cols, data_08* filteredimage) {
  if (image != nullptr && filteredimage != nullptr && rows > 2 && cols > 2) {
    Kernels().median_separate(image, rows, cols, filteredimage);
  }
  return 0;
}

}  // extern "C"
