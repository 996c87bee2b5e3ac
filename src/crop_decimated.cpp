// crop_decimated.cpp: whole images and regions, decimated by 2 or 3. The detector needs none of it: it is for
// the host.
#include <cstddef>

#include "crop.h"
#include "kernels/kernels.h"
#include "vel_stopngo.h"

namespace {

void Subsample(const DATA_08* Input, data_08* Output, DATA_32 EndY, DATA_32 EndX, const Pattern& Every) {
  if (Input == nullptr || Output == nullptr || EndY == 0 || EndX == 0) return;
  Kernels().Resample(Input, static_cast<std::ptrdiff_t>(EndX) * Every.Source, Every, Every, Output, EndY,
                     EndX);
}

/// Location of the image decimated by Every, taken from the full one.
void RegionOfDecimated(const DATA_08* Input, data_08* Output, const DATA_32* Location, INTEGER Flip,
                       DATA_32 EndY, DATA_32 EndX, const Pattern& Every) {
  if (Input == nullptr || Output == nullptr || Location == nullptr) return;
  const DATA_32 CropY = Location[2] - Location[0];
  const DATA_32 CropX = Location[3] - Location[1];
  if (CropY == 0 || CropX == 0) return;
  const std::ptrdiff_t k = Every.Source;
  const auto RowLength = static_cast<std::ptrdiff_t>(EndX);
  const std::ptrdiff_t Top = k * std::ptrdiff_t{Location[0]};
  // Upside down, the decimated image starts with the first kept row of the last whole group of k rows.
  const std::ptrdiff_t FirstRow = Flip < 0 ? std::ptrdiff_t{EndY} - k - Top : Top;
  Kernels().Resample(Input + FirstRow * RowLength + k * std::ptrdiff_t{Location[1]},
                     Flip < 0 ? -RowLength : RowLength, Every, Every, Output, CropY, CropX);
}

}  // namespace

extern "C" {

void Image_Subsampling_2_(const DATA_08* Input, data_08* Output, DATA_32 EndY, DATA_32 EndX) {
  Subsample(Input, Output, EndY, EndX, kEverySecond);
}

void Image_Subsampling_3_(const DATA_08* Input, data_08* Output, DATA_32 EndY, DATA_32 EndX) {
  Subsample(Input, Output, EndY, EndX, kEveryThird);
}

void Image_Cropping_2_(const DATA_08* Input, data_08* Output, const DATA_32* Location, INTEGER Flip,
                       DATA_32 EndY, DATA_32 EndX) {
  if (Input == nullptr || Output == nullptr || Location == nullptr) return;
  const Sampling Source = {.Rows = &kEverySecond, .Columns = &kCopy, .Top = Location[0], .Left = Location[1]};
  ResampleFlipped(Input, Source, Flip, EndY, EndX, Output, (Location[2] - Location[0]) / 2,
                  Location[3] - Location[1]);
}

void Image_ROI_2_(const DATA_08* Input, data_08* Output, const DATA_32* Location, INTEGER Flip, DATA_32 EndY,
                  DATA_32 EndX) {
  RegionOfDecimated(Input, Output, Location, Flip, EndY, EndX, kEverySecond);
}

void Image_ROI_3_(const DATA_08* Input, data_08* Output, const DATA_32* Location, INTEGER Flip, DATA_32 EndY,
                  DATA_32 EndX) {
  RegionOfDecimated(Input, Output, Location, Flip, EndY, EndX, kEveryThird);
}

}  // extern "C"
