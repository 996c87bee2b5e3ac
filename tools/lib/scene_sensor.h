// scene_sensor.h: the image sensor of a scene: light to grey levels, with noise.
#pragma once

#include <cstdint>
#include <span>

namespace stopngo {

class Sensor {
 public:
  /// deviation: of the noise at a middle grey, in grey levels.
  Sensor(double deviation, std::uint64_t seed);
  /// Turns one row of exact grey levels into bytes.
  void Expose(std::span<const float> light, std::int64_t frame, int row, std::span<std::uint8_t> out) const;

 private:
  float deviation_;
  std::uint64_t seed_;
};

}  // namespace stopngo
