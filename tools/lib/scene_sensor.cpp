// scene_sensor.cpp: read noise, shot noise and rounding to grey levels.
#include "scene_sensor.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "scene_random.h"

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

}  // namespace

Sensor::Sensor(double deviation, std::uint64_t seed)
    : deviation_(static_cast<float>(deviation)), seed_(seed) {}

void Sensor::Expose(std::span<const float> light, std::int64_t frame, int row,
                    std::span<std::uint8_t> out) const {
  NoiseLanes lanes(seed_, frame, row);
  std::array<float, kLanes> unit{};
  std::array<float, kLanes> level{};
  std::array<std::uint8_t, kLanes> bytes{};
  for (std::size_t x = 0; x < light.size(); x += kLanes) {
    const std::size_t count = std::min(kLanes, light.size() - x);
    std::copy_n(light.begin() + static_cast<std::ptrdiff_t>(x), count, level.begin());
    lanes.Next(unit);
    for (std::size_t i = 0; i < kLanes; i++) {
      const float deviation = deviation_ * RelativeDeviation(level[i]);
      const float grey = std::clamp(level[i] + deviation * unit[i] + 0.5F, 0.0F, 255.0F);
      bytes[i] = static_cast<std::uint8_t>(static_cast<std::int32_t>(grey));
    }
    std::copy_n(bytes.begin(), count, out.begin() + static_cast<std::ptrdiff_t>(x));
  }
}

}  // namespace stopngo
