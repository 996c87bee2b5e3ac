// frames.cpp: what one frame costs, by configuration, content, area and number of blocks.
#include "frames.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "contestant.h"
#include "detector_loop.h"
#include "kernels/kernels.h"

namespace bench {
namespace {

constexpr const char* kFilterNames[] = {"none", "median", "gaussian"};

double Cost(const Meter& meter, const DetectorSettings& settings) {
  DetectorLoop loop(settings);
  // The first frame is not analysed, and the first two allocate.
  for (int i = 0; i < 3; ++i) {
    if (!loop.Write()) throw std::runtime_error("a frame was refused");
  }
  return meter(Repeat([&loop] { loop.Write(); }));
}

std::vector<DetectorSettings> Crops() {
  std::vector<DetectorSettings> crops;
  for (const int scale : {0, 2, 4, 5, 6, 7, 8}) crops.push_back({.original = 800, .scale = scale});
  for (const int original : {1280, 1920}) {
    for (const int scale : {0, 2, 4, 6, 8}) crops.push_back({.original = original, .scale = scale});
  }
  return crops;
}

/// One line a configuration, one column a content.
void PrintConfigurations(const Meter& meter) {
  std::printf("frame\tscale\tfilter");
  for (const char* name : kContentNames) std::printf("\t%s", name);
  std::printf("\tworst / best\n");
  double worst = 0;
  std::string worst_name;
  for (const char* const& filter : kFilterNames) {
    for (DetectorSettings settings : Crops()) {
      settings.filter = static_cast<int>(&filter - kFilterNames);
      std::vector<double> costs;
      std::printf("%d\t%d\t%s", settings.original, settings.scale, filter);
      for (std::size_t content = 0; content < std::size(kContentNames); ++content) {
        settings.content = static_cast<Content>(content);
        costs.push_back(Cost(meter, settings));
        std::printf("\t%.0f", costs.back());
        if (costs.back() <= worst) continue;
        worst = costs.back();
        worst_name = "frame " + std::to_string(settings.original) + " scale " +
                     std::to_string(settings.scale) + " filter " + filter + " " + kContentNames[content];
      }
      const auto [low, high] = std::ranges::minmax(costs);
      std::printf("\t%.2f\n", high / low);
      std::fflush(stdout);
    }
  }
  std::printf("worst\t%.0f\t%s\n", worst, worst_name.c_str());
}

/// How a frame's cost grows: with the area at blocks of 10, then with the number of blocks in one area.
void PrintGrowth(const Meter& meter) {
  std::printf("\nwidth\theight\tblock\tblocks\tarea\tnone\tmedian\tgaussian\n");
  std::vector<DetectorSettings> sizes;
  for (const int cells : {1, 2, 3, 4}) {
    // Whole cells of 4 × 3 blocks, and a block of margin around.
    sizes.push_back({.width = 10 * (4 * cells + 2), .height = 10 * (3 * cells + 2)});
  }
  sizes.push_back({});
  for (const int block : {12, 16, 20, 30}) sizes.push_back({.block = block});
  for (DetectorSettings settings : sizes) {
    const DetectorLoop shape(settings);
    std::printf("%d\t%d\t%d\t%u\t%d", settings.width, settings.height, settings.block, shape.Blocks(),
                settings.width * settings.height);
    for (settings.filter = 0; settings.filter < 3; ++settings.filter)
      std::printf("\t%.0f", Cost(meter, settings));
    std::printf("\n");
  }
}

}  // namespace

void PrintFrameCosts(const Meter& meter, const char* unit) {
  std::printf("one frame with the %s kernels, %s\n", Kernels().name, unit);
  PrintConfigurations(meter);
  PrintGrowth(meter);
}

}  // namespace bench
