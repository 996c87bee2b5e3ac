// sensor.h: lens and image sensor of a scene: light to grey levels, with blur, exposure and noise.
#pragma once

#include <cstdint>
#include <span>

#include "scene/recipe/recipe.h"
#include "scene/space/window.h"

namespace stopngo {

class Sensor {
 public:
  Sensor(const SensorOptions& options, const PicturePart& frame, std::uint64_t seed);
  /// Turns exact grey levels into bytes. index: of the picture, for its noise. The light is changed.
  void Expose(std::span<float> light, double time_s, std::int64_t index, std::span<std::uint8_t> out) const;
  /// What all light is multiplied by at a time.
  [[nodiscard]] double Gain(double time_s) const;

 private:
  void Blur(std::span<float> light) const;
  void ExposeRow(int row, float gain, std::int64_t index, std::span<float> light,
                 std::span<std::uint8_t> out) const;

  SensorOptions options_;
  PicturePart frame_;
  std::uint64_t seed_;
};

}  // namespace stopngo
