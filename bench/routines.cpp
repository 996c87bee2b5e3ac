// routines.cpp: the module's routines as contestants, called as a host calls them.
#include <algorithm>
#include <cstring>
#include <memory>

#include "contestant.h"
#include "crops.h"
#include "detector_loop.h"
#include "kernels/kernels.h"
#include "random.h"
#include "scene.h"
#include "vel_stopngo.h"

namespace bench {
namespace {

constexpr std::uint32_t kInputs = 160;
constexpr std::uint32_t kHiddens = 16;

std::vector<float> RandomFloats(std::size_t count) {
  test::Random random(11);
  std::vector<float> values(count);
  for (float& value : values) value = random.Signed();
  return values;
}

FramePair MakeRegions() { return MakeFrames(kRegionWidth, kRegionHeight, Content::kMoving); }

Contestant Plain(const char* name, std::function<void(int)> run) {
  return {name, "", nullptr, std::move(run)};
}

/// A routine that changes the region it is given: each call gets a fresh one.
template <typename Work>
Contestant InPlace(const char* name, Work work) {
  const auto source = std::make_shared<Pixels>(MakeRegions().after);
  const auto image = std::make_shared<Pixels>(*source);
  return {name, "", [=] { std::ranges::copy(*source, image->begin()); },
          Repeat([=] { work(image->data()); })};
}

// ---- One or more routines for each kernel ----

void AddResample(std::vector<Contestant>& all) {
  for (const CropCase& crop : CropCases()) {
    all.push_back(Plain(crop.name.c_str(), Repeat([&crop] { crop.run(crop, CropOutput()); })));
  }
}

void AddMedianInPlace(std::vector<Contestant>& all) {
  all.push_back(InPlace("image_median_filter", [](std::uint8_t* image) {
    image_median_filter(image, 0, kRegionWidth, kRegionHeight);
  }));
}

void AddGaussianInPlace(std::vector<Contestant>& all) {
  all.push_back(InPlace("image_gaussian_blur_filter", [](std::uint8_t* image) {
    image_gaussian_blur_filter(image, 0, kRegionWidth, kRegionHeight);
  }));
}

/// The vectors of two frames on the default grid.
std::vector<std::int8_t> Match(const FramePair& pair) {
  std::vector<std::int8_t> motion(480);
  Block_Match_TSS_(pair.before.data(), pair.after.data(), motion.data(), 10, 12, 20, kRegionWidth);
  return motion;
}

void AddMatchBlocks(std::vector<Contestant>& all) {
  const auto pair = std::make_shared<FramePair>(MakeRegions());
  const auto motion = std::make_shared<std::vector<std::int8_t>>(480);
  all.push_back(Plain("Block_Match_TSS_", Repeat([=] {
                        Block_Match_TSS_(pair->before.data(), pair->after.data(), motion->data(), 10, 12, 20,
                                         kRegionWidth);
                      })));
}

void AddSumDirections(std::vector<Contestant>& all) {
  const auto motion = std::make_shared<std::vector<std::int8_t>>(Match(MakeRegions()));
  const auto chunk = std::make_shared<std::vector<std::int8_t>>(80);
  all.push_back(Plain("Block_Local_Histogram_",
                      Repeat([=] { Block_Local_Histogram_(motion->data(), chunk->data(), 4, 5); })));
}

void AddConvert(std::vector<Contestant>& all) {
  const auto chunk = std::make_shared<std::vector<std::int8_t>>(80);
  Block_Local_Histogram_(Match(MakeRegions()).data(), chunk->data(), 4, 5);
  const auto converted = std::make_shared<std::vector<float>>(80);
  all.push_back(Plain("Classify_Conversion_",
                      Repeat([=] { Classify_Conversion_(chunk->data(), converted->data(), 80); })));
}

void AddScore(std::vector<Contestant>& all) {
  const auto features = std::make_shared<std::vector<float>>(RandomFloats(kInputs));
  const auto weights = std::make_shared<std::vector<float>>(RandomFloats((kInputs + 2) * kHiddens + 1));
  all.push_back(Plain("Classify_Feature_", Repeat([=] {
                        Classify_Feature_(features->data(), weights->data(), kInputs, kHiddens);
                      })));
}

void AddMedianSeparate(std::vector<Contestant>& all) {
  const auto image = std::make_shared<Pixels>(MakeRegions().after);
  const auto filtered = std::make_shared<Pixels>(image->size());
  all.push_back(Plain("median_filter", Repeat([=] {
                        median_filter(image->data(), kRegionHeight, kRegionWidth, filtered->data());
                      })));
}

void AddMarkRows(std::vector<Contestant>& all) {
  const auto frame = std::make_shared<Pixels>(MakeFrames(800, 480, Content::kMoving).after);
  const auto mark = std::make_shared<Pixels>(MakeRegions().after);
  all.push_back(
      Plain("Image_Marking_", Repeat([=] { Image_Marking_(frame->data(), mark->data(), kRegion, 800); })));
}

void AddExchangeRows(std::vector<Contestant>& all) {
  const auto frame = std::make_shared<Pixels>(MakeFrames(800, 480, Content::kMoving).after);
  const auto buffer = std::make_shared<Pixels>(800);
  all.push_back(
      Plain("Image_Flipping_", Repeat([=] { Image_Flipping_(frame->data(), buffer->data(), 480, 800); })));
}

#define STOPNGO_ADD(all, Form, Contract) Add##Form(all);

}  // namespace

std::vector<Contestant> Routines() {
  std::vector<Contestant> all;
  STOPNGO_KERNELS(STOPNGO_ADD, all)
  const auto loop = std::make_shared<DetectorLoop>(DetectorSettings{});
  all.push_back(Plain("vel_stopngo_write", Repeat([=] { loop->Write(); })));
  return all;
}

#undef STOPNGO_ADD

void AddCopyPeers(std::vector<Contestant>& peers) {
  // Ratio 6 of the large frame keeps every column of its area: no copy of rows can be beaten.
  const auto& crops = CropCases();
  const auto crop = std::ranges::find(crops, "Image_Original_Cropping_ 1920 Ratio 6", &CropCase::name);
  peers.push_back({crop->name, "row copy", nullptr, Repeat([&crop = *crop] {
                     const std::uint8_t* first =
                         crop.frame + std::size_t{crop.top} * crop.frame_width + crop.left;
                     for (std::uint32_t row = 0; row < crop.out_height; ++row) {
                       std::memcpy(CropOutput() + std::size_t{row} * crop.out_width,
                                   first + std::size_t{row} * crop.frame_width, crop.out_width);
                     }
                   })});
}

}  // namespace bench
