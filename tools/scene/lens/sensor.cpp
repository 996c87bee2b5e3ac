// sensor.cpp: the lens's blur, exposure, read noise, shot noise and rounding to grey levels.
#include "scene/lens/sensor.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "base/random.h"

namespace stopngo {
namespace {

constexpr std::size_t kLanes = 16;  // generators side by side: a compiler makes vectors of them

/// Sixteen xorshift32 generators (Marsaglia 2003).
class NoiseLanes {
 public:
  NoiseLanes(std::uint64_t seed, std::int64_t frame, int row) {
    Random random(seed ^ Mix64(static_cast<std::uint64_t>(frame)), static_cast<std::uint64_t>(row));
    for (auto& lane : state_) {
      lane = static_cast<std::uint32_t>(random.Next() >> 32) | 1U;  // zero would stay zero
    }
  }
  /// The sum of four uniform bytes is near enough to a normal distribution: mean 510, and a
  /// standard deviation of sqrt(4 (256² - 1) / 12) = 147.8.
  void Next(std::array<float, kLanes>& unit) {
    for (std::size_t i = 0; i < kLanes; i++) {
      std::uint32_t x = state_[i];
      x ^= x << 13;
      x ^= x >> 17;
      x ^= x << 5;
      state_[i] = x;
      const std::uint32_t pairs = (x & 0xff00ffU) + ((x >> 8) & 0xff00ffU);
      const auto sum = static_cast<std::int32_t>((pairs & 0xffffU) + (pairs >> 16));
      unit[i] = static_cast<float>(sum - 510) * (1 / 147.8F);
    }
  }

 private:
  std::array<std::uint32_t, kLanes> state_{};
};

/// How the deviation of the noise depends on the grey level. At 110, a street's average, a third of the
/// variance is the readout's and two thirds come from counting photons, whose variance grows in step with
/// the light. This is the parabola through that root at the levels 0, 110 and 255.
constexpr float RelativeDeviation(float level) { return 0.577F + level * (0.0044034F - 5.072e-6F * level); }

constexpr float kContrastPivot = 100;

}  // namespace

Sensor::Sensor(const SensorOptions& options, const PicturePart& frame, std::uint64_t seed)
    : options_(options), frame_(frame), seed_(seed) {}

double Sensor::Gain(double time_s) const {
  double gain = options_.gain;
  for (const ExposureChange& change : options_.exposure) {
    const double share = std::clamp((time_s - change.start_s) / std::max(change.ramp_s, 1e-3), 0.0, 1.0);
    gain *= 1 + (change.factor - 1) * share;
  }
  return gain;
}

/// Each pixel gives a share to its neighbours, first across, then down.
void Sensor::Blur(std::span<float> light) const {
  const auto width = static_cast<std::size_t>(frame_.width);
  const auto share = static_cast<float>(options_.blur);
  const float own = 1 - 2 * share;
  std::vector<float> above(width);
  std::vector<float> row(width);
  for (std::size_t begin = 0; begin < light.size(); begin += width) {
    const auto line = light.subspan(begin, width);
    std::copy(line.begin(), line.end(), row.begin());
    for (std::size_t x = 1; x + 1 < width; x++) {
      line[x] = own * row[x] + share * (row[x - 1] + row[x + 1]);
    }
  }
  std::copy_n(light.begin(), width, above.begin());
  for (std::size_t begin = 0; begin + width < light.size(); begin += width) {
    for (std::size_t x = 0; x < width; x++) {
      const float here = light[begin + x];
      light[begin + x] = own * here + share * (above[x] + light[begin + width + x]);
      above[x] = here;
    }
  }
}

void Sensor::Expose(std::span<float> light, double time_s, std::int64_t index,
                    std::span<std::uint8_t> out) const {
  if (options_.blur > 0) {
    Blur(light);
  }
  const auto width = static_cast<std::size_t>(frame_.width);
  const auto gain = static_cast<float>(Gain(time_s));
  for (int row = 0; row < frame_.height; row++) {
    const std::size_t begin = static_cast<std::size_t>(row) * width;
    ExposeRow(row, gain, index, light.subspan(begin, width), out.subspan(begin, width));
  }
}

void Sensor::ExposeRow(int row, float gain, std::int64_t index, std::span<float> light,
                       std::span<std::uint8_t> out) const {
  const auto contrast = static_cast<float>(options_.contrast);
  const auto deviation = static_cast<float>(options_.noise);
  const float middle_x = 0.5F * static_cast<float>(frame_.whole_width);
  const float middle_y = 0.5F * static_cast<float>(frame_.whole_height);
  const float falloff = static_cast<float>(options_.vignette) / (middle_x * middle_x + middle_y * middle_y);
  const float dy = static_cast<float>(frame_.y + row) - middle_y;
  for (std::size_t x = 0; x < light.size(); x++) {
    const float dx = static_cast<float>(frame_.x) + static_cast<float>(x) - middle_x;
    const float strength = gain * (1 - falloff * (dx * dx + dy * dy));
    const float level = kBlack + (light[x] - kBlack) * strength;
    light[x] = std::clamp(kContrastPivot + (level - kContrastPivot) * contrast, 0.0F, 255.0F);
  }
  NoiseLanes lanes(seed_, index, row + frame_.y);
  std::array<float, kLanes> unit{};
  std::array<float, kLanes> level{};
  std::array<std::uint8_t, kLanes> bytes{};
  for (std::size_t x = 0; x < light.size(); x += kLanes) {
    const std::size_t count = std::min(kLanes, light.size() - x);
    std::copy_n(light.begin() + static_cast<std::ptrdiff_t>(x), count, level.begin());
    lanes.Next(unit);
    for (std::size_t i = 0; i < kLanes; i++) {
      const float amplitude = deviation * RelativeDeviation(level[i]);
      const float grey = std::clamp(level[i] + amplitude * unit[i] + 0.5F, 0.0F, 255.0F);
      bytes[i] = static_cast<std::uint8_t>(static_cast<std::int32_t>(grey));
    }
    std::copy_n(bytes.begin(), count, out.begin() + static_cast<std::ptrdiff_t>(x));
  }
}

}  // namespace stopngo
