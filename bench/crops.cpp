// crops.cpp: every crop in the geometry of the default region.
#include "crops.h"

#include "crop.h"
#include "scene.h"
#include "vel_stopngo.h"

namespace bench {
namespace {

const Pixels& Frame(std::uint32_t width) {
  static const Pixels working = MakeFrames(800, 480, Content::kMoving).after;
  static const Pixels middle = MakeFrames(1280, 720, Content::kMoving).after;
  static const Pixels large = MakeFrames(1920, 1080, Content::kMoving).after;
  return width == 800 ? working : width == 1280 ? middle : large;
}

/// A crop of the default region, sampled as the detector would.
CropCase Detector(std::uint32_t width, std::uint32_t ratio) {
  const bool working = width == 800;
  const Sampling source = working
                              ? CroppingSource(kRegion, ratio)
                              : OriginalCroppingSource(width, kRegion, kRegionHeight, kRegionWidth, ratio);
  CropCase crop{};
  crop.name = working ? "Image_Cropping_" : "Image_Original_Cropping_ " + std::to_string(width);
  crop.name += " Ratio " + std::to_string(ratio);
  crop.frame = Frame(width).data();
  crop.frame_width = width;
  crop.frame_height = working ? 480 : width * 9 / 16;
  crop.top = source.Top;
  crop.left = source.Left;
  crop.rows = kRegionHeight * source.Rows->Source / source.Rows->Output;
  crop.columns = kRegionWidth * source.Columns->Source / source.Columns->Output;
  crop.out_height = kRegionHeight;
  crop.out_width = kRegionWidth;
  crop.ratio = ratio;
  crop.run = working ? [](const CropCase& c, std::uint8_t* output) {
    Image_Cropping_(c.frame, output, kRegion, kRegion, c.ratio, 0, c.frame_height, c.frame_width);
  } : [](const CropCase& c, std::uint8_t* output) {
    Image_Original_Cropping_(c.frame_width, c.frame_height, c.frame, output, kRegion, kRegion, c.ratio, 0,
                             c.frame_height, c.frame_width);
  };
  return crop;
}

/// Every k-th pixel of the working frame, or of a region of it.
CropCase Decimation(const char* name, std::uint32_t k, bool region, decltype(CropCase::run) run) {
  CropCase crop{};
  crop.name = name;
  crop.frame = Frame(800).data();
  crop.frame_width = 800;
  crop.frame_height = 480;
  crop.top = region ? k * kSmallRegion[0] : 0;
  crop.left = region ? k * kSmallRegion[1] : 0;
  crop.out_height = region ? kRegionHeight : 480 / k;
  crop.out_width = region ? kRegionWidth : 800 / k;
  crop.rows = k * crop.out_height;
  crop.columns = k * crop.out_width;
  crop.run = run;
  // The decimation of a whole image takes rows without padding.
  if (!region) crop.frame_width = crop.columns;
  return crop;
}

std::vector<CropCase> MakeCropCases() {
  std::vector<CropCase> crops;
  for (const std::uint32_t ratio : {0, 2, 4, 5, 6, 7, 8}) crops.push_back(Detector(800, ratio));
  for (const std::uint32_t width : {1920, 1280}) {
    for (const std::uint32_t ratio : {0, 2, 4, 6, 8}) crops.push_back(Detector(width, ratio));
  }
  crops.push_back(Decimation("Image_Subsampling_2_", 2, false, [](const CropCase& c, std::uint8_t* output) {
    Image_Subsampling_2_(c.frame, output, c.out_height, c.out_width);
  }));
  crops.push_back(Decimation("Image_Subsampling_3_", 3, false, [](const CropCase& c, std::uint8_t* output) {
    Image_Subsampling_3_(c.frame, output, c.out_height, c.out_width);
  }));
  crops.push_back(Decimation("Image_ROI_2_", 2, true, [](const CropCase& c, std::uint8_t* output) {
    Image_ROI_2_(c.frame, output, kSmallRegion, 0, c.frame_height, c.frame_width);
  }));
  crops.push_back(Decimation("Image_ROI_3_", 3, true, [](const CropCase& c, std::uint8_t* output) {
    Image_ROI_3_(c.frame, output, kSmallRegion, 0, c.frame_height, c.frame_width);
  }));
  return crops;
}

}  // namespace

const std::vector<CropCase>& CropCases() {
  static const std::vector<CropCase> crops = MakeCropCases();
  return crops;
}

std::uint8_t* CropOutput() {
  static Pixels output(400 * 240);
  return output.data();
}

}  // namespace bench
