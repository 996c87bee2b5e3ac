// import_utility.cpp: crops, flip and mark that the detector does not need; they are there for the host.
#include <cstddef>

#include "kernels/kernels.h"
#include "resample.h"
#include "vel_stopngo.h"

namespace {

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
  Kernels().resample(Input + FirstRow * RowLength + k * std::ptrdiff_t{Location[1]},
                     Flip < 0 ? -RowLength : RowLength, Every, Every, Output, CropY, CropX);
}

}  // namespace

extern "C" {

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

void Image_Flipping_(data_08* Image, data_08* Buffer, DATA_32 EndY, DATA_32 EndX) {
  if (Image == nullptr || Buffer == nullptr) return;
  const std::size_t RowLength = EndX;
  for (DATA_32 Row = 0; Row < EndY / 2; ++Row) {
    data_08* LineA = Image + Row * RowLength;
    data_08* LineB = Image + (EndY - 1 - Row) * RowLength;
    Kernels().exchange_rows(LineA, LineB, Buffer, EndX);
  }
}

void Image_Marking_(data_08* Image, const DATA_08* Mark, const DATA_32* Location, DATA_32 EndX) {
  if (Image == nullptr || Mark == nullptr || Location == nullptr) return;
  if (Location[2] <= Location[0] || Location[3] <= Location[1]) return;
  const DATA_32 Width = Location[3] - Location[1];
  data_08* ImagePointer = Image + std::size_t{Location[0]} * EndX + Location[1];
  Kernels().mark_rows(ImagePointer, Mark, Location[2] - Location[0], Width, EndX);
}

}  // extern "C"
