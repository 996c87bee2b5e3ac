// looks.cpp: the ways in which a training looks at one clip.
#include "train/looks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "evaluate/evaluation.h"

namespace stopngo {
namespace {

/// Looks at the same frames: rendering or decoding them takes many times as long as their analysis.
constexpr int kLooksARate = 3;

double DrawRate(double rate, Random& random) { return rate * random.Uniform(0.75, 1.35); }

Look DrawLook(const Settings& settings, Random& random) {
  Look look{random.Below(2) == 1, 0, 0, settings.filter, settings.scale};
  look.dx = static_cast<int>(random.Below(2 * kLookShift + 1)) - kLookShift;
  look.dy = static_cast<int>(random.Below(2 * kLookShift + 1)) - kLookShift;
  // Three in ten smoothed, one in five magnified: the module's settings are the user's to choose.
  const std::uint32_t smoothing = random.Below(10);
  if (smoothing < 3) look.filter = smoothing < 2 ? 1 : 2;
  if (random.Below(5) == 0) look.scale = 2;
  return look;
}

}  // namespace

std::vector<LooksAtRate> DrawLooks(const Settings& settings, double rate, int count, Random random) {
  std::vector<LooksAtRate> all;
  for (int first = 0; first < count; first += kLooksARate) {
    LooksAtRate& at_rate = all.emplace_back();
    at_rate.rate = first == 0 ? rate : DrawRate(rate, random);
    for (int i = first; i < std::min(count, first + kLooksARate); i++) {
      at_rate.looks.push_back(i == 0 ? Look{false, 0, 0, settings.filter, settings.scale}
                                     : DrawLook(settings, random));
    }
  }
  return all;
}

Settings ForLook(Settings settings, const OpenedClip& clip, const Look& look) {
  const SourceInfo& info = clip.frames->Info();
  settings = Watching(std::move(settings));
  settings.filter = look.filter;
  settings.scale = look.scale;
  settings.original_size.reset();
  Region region = clip.region;
  if (look.mirrored) region.x = info.width - region.x - region.width;
  region.x = std::clamp(region.x + look.dx, 0, info.width - region.width);
  region.y = std::clamp(region.y + look.dy, 0, info.height - region.height);
  return Placed(std::move(settings), region, info.width, info.height);
}

void Mirror(LumaFrame& frame) {
  for (std::size_t row = 0; row < static_cast<std::size_t>(frame.height); row++) {
    const auto begin = frame.pixels.begin() + static_cast<std::ptrdiff_t>(row) * frame.width;
    std::reverse(begin, begin + frame.width);
  }
}

}  // namespace stopngo
