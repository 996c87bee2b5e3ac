// import_subsampling.cpp: whole images, decimated by 2 or 3.
#include "kernels/kernels.h"
#include "vel_stopngo.h"

namespace {

void Subsample(const DATA_08* Input, data_08* Output, DATA_32 EndY, DATA_32 EndX, const Pattern& Every) {
  if (Input == nullptr || Output == nullptr || EndY == 0 || EndX == 0) return;
  Kernels().resample(Input, static_cast<std::ptrdiff_t>(EndX) * Every.Source, Every, Every, Output, EndY,
                     EndX);
}

}  // namespace

extern "C" {

void Image_Subsampling_2_(const DATA_08* Input, data_08* Output, DATA_32 EndY, DATA_32 EndX) {
  Subsample(Input, Output, EndY, EndX, kEverySecond);
}

void Image_Subsampling_3_(const DATA_08* Input, data_08* Output, DATA_32 EndY, DATA_32 EndX) {
  Subsample(Input, Output, EndY, EndX, kEveryThird);
}

}  // extern "C"
