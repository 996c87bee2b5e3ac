// windscreen.cpp: painting dirt, reflections and the bonnet.
#include "scene/lens/windscreen.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "base/random.h"
#include "base/streams.h"
#include "scene/paint/noise.h"

namespace stopngo {
Windscreen::Windscreen(const WindscreenOptions& options, const Light& light, const PicturePart& frame,
                       std::uint64_t seed)
    : ambient_(light.ambient) {
  if (options.bonnet <= 0 && options.reflections <= 0 && options.dirt <= 0) {
    return;
  }
  Random random = RandomOf(seed, stream::kWindscreen);
  seed_ = static_cast<std::uint32_t>(random.Next());
  bonnet_tone_ = static_cast<float>(random.Uniform(24, 170));
  const std::size_t pixels = static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height);
  through_.assign(pixels, 1);
  added_.assign(pixels, 0);
  for (std::size_t pixel = 0; pixel < pixels; pixel++) {
    const auto column = static_cast<int>(pixel % static_cast<std::size_t>(frame.width));
    const auto row = static_cast<int>(pixel / static_cast<std::size_t>(frame.width));
    // Both in heights of the whole picture, so that a window shows the same spots.
    const auto height = static_cast<float>(frame.whole_height);
    const float middle = 0.5F * static_cast<float>(frame.whole_width) / height;
    Paint(options, pixel, static_cast<float>(frame.x + column) / height - middle,
          static_cast<float>(frame.y + row) / height);
  }
}

void Windscreen::Paint(const WindscreenOptions& options, std::size_t pixel, float x, float y) {
  if (options.dirt > 0) {
    const float spots =
        std::max(0.0F, ValueNoise(x * 9, y * 9, seed_) * ValueNoise(x * 31, y * 31, seed_ + 1));
    const float film = 0.3F + 0.3F * ValueNoise(x * 2, y * 2, seed_ + 2);
    const auto dirt = static_cast<float>(options.dirt) * std::min(1.0F, 1.2F * spots + film);
    through_[pixel] = 1 - dirt;
    added_[pixel] += dirt * (kBlack + 120 * ambient_);
  }
  if (options.reflections > 0) {  // papers and the edge of the dashboard
    const float sheet = ValueNoise(x * 1.7F + y, y * 2.3F, seed_ + 3);
    const float edge = std::clamp(0.5F + 14 * (sheet - 0.2F), 0.0F, 1.0F);
    const float vents = std::clamp(4 * ValueNoise(x * 12, y * 5, seed_ + 4) - 1.6F, 0.0F, 1.0F);
    added_[pixel] += static_cast<float>(options.reflections) * ambient_ * (0.7F * edge + 0.3F * vents);
  }
  // The bonnet's front edge is a flat arc.
  const float edge = 1 - static_cast<float>(options.bonnet) * (1 - 0.35F * x * x);
  if (options.bonnet > 0 && y > edge) {
    const float mirror = 25 * ValueNoise(x * 5, (y - edge) * 30, seed_ + 5) + 120 * (y - edge);
    const float cover = std::min(1.0F, (y - edge) * 250);
    through_[pixel] *= 1 - cover;
    added_[pixel] = added_[pixel] * (1 - cover) + cover * Light::Lit(bonnet_tone_ + mirror, ambient_);
  }
}

void Windscreen::Draw(std::span<float> light) const {
  for (std::size_t i = 0; i < through_.size(); i++) {
    light[i] = light[i] * through_[i] + added_[i];
  }
}

}  // namespace stopngo
