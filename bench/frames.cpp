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
  std::printf("# frame\tscale\tfilter");
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
  std::printf("# worst\t%.0f\t%s\n", worst, worst_name.c_str());
}

void PrintSizes(const Meter& meter, const char* title, const std::vector<DetectorSettings>& sizes) {
  std::printf("\n\n# %s\n# width\theight\tblock\tblocks\tarea", title);
  for (const char* filter : kFilterNames) std::printf("\t%s", filter);
  std::printf("\n");
  for (DetectorSettings settings : sizes) {
    // Noise: on no processor is any other content dearer.
    settings.content = Content::kNoise;
    const DetectorLoop shape(settings);
    std::printf("%d\t%d\t%d\t%u\t%d", settings.width, settings.height, settings.block, shape.Blocks(),
                settings.width * settings.height);
    for (settings.filter = 0; settings.filter < 3; ++settings.filter)
      std::printf("\t%.0f", Cost(meter, settings));
    std::printf("\n");
  }
}

/// How a frame's cost grows, with one thing at a time.
void PrintGrowth(const Meter& meter) {
  std::vector<DetectorSettings> cells;
  for (const int count : {1, 2, 3, 4}) {
    // Whole cells of 4 × 3 blocks, and a block of margin around.
    cells.push_back({.width = 10 * (4 * count + 2), .height = 10 * (3 * count + 2)});
  }
  cells.push_back({});
  PrintSizes(meter, "more blocks of 10 in a larger region", cells);

  std::vector<DetectorSettings> blocks;
  for (const int block : {10, 12, 16, 20, 30}) blocks.push_back({.block = block});
  PrintSizes(meter, "larger and fewer blocks in the default region", blocks);

  // As many as a motion field holds. The last size is beyond the fast forms.
  std::vector<DetectorSettings> areas;
  for (const int block : {10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30, 32, 34})
    areas.push_back({.left = 0, .top = 0, .width = 22 * block, .height = 14 * block, .block = block});
  PrintSizes(meter, "240 blocks, larger in a larger region", areas);
}

}  // namespace

void PrintFrameCosts(const Meter& meter, const char* unit) {
  std::printf("# one frame with the %s kernels, %s\n", Kernels().Name, unit);
  PrintConfigurations(meter);
  PrintGrowth(meter);
}

}  // namespace bench
