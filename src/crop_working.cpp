// crop_working.cpp: the region of interest of a working-size frame, plain or magnified.
#include "crop.h"
#include "vel_stopngo.h"

namespace {

/// Indexed by Ratio: the tenths of the output size that the source area gives up. Source / Output is
/// (10 - Ratio) / 10, in the smallest whole numbers. Ratios without a pattern have none.
constexpr DATA_32 kRatios = 9;
constexpr Pattern kMagnification[kRatios] = {
    kCopy,
    {},
    {4, 5, {0, 1, 2, 3, 3}},
    {},
    {3, 5, {0, 1, 1, 2, 2}},
    {1, 2, {0, 0}},
    {2, 5, {0, 0, 0, 1, 1}},
    {3, 10, {0, 0, 0, 1, 1, 1, 1, 2, 2, 2}},
    {1, 5, {0, 0, 0, 0, 0}},
};

}  // namespace

Sampling CroppingSource(const DATA_32* Source_Location, DATA_32 Ratio) {
  const bool Handled = Ratio < kRatios && kMagnification[Ratio].Output != 0;
  const Pattern* Selected = Handled ? &kMagnification[Ratio] : nullptr;
  return {.Rows = Selected, .Columns = Selected, .Top = Source_Location[0], .Left = Source_Location[1]};
}

extern "C" void Image_Cropping_(const DATA_08* Input, data_08* Output, const DATA_32* Source_Location,
                                const DATA_32* Location, DATA_32 Ratio, INTEGER Flip, DATA_32 EndY,
                                DATA_32 EndX) {
  if (Input == nullptr || Output == nullptr || Source_Location == nullptr || Location == nullptr) return;
  const DATA_32 CropY = Location[2] - Location[0];
  const DATA_32 CropX = Location[3] - Location[1];
  const Sampling Source = CroppingSource(Source_Location, Ratio);
  if (Source.Rows == nullptr) return;
  ResampleFlipped(Input, Source, Flip, EndY, EndX, Output, CropY, CropX);
}
