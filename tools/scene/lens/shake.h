// shake.h: how the camera shakes: engine, wind, jolts, the road.
#pragma once

#include <cstdint>

#include "scene/recipe/recipe.h"
#include "scene/space/offset.h"

namespace stopngo {

/// The picture's displacement, in pixels.
class Shake {
 public:
  Shake(const CameraOptions& options, std::uint64_t seed);
  /// speed: of our own vehicle, m/s.
  [[nodiscard]] Offset At(double time_s, double speed) const;
  /// Neither coordinate ever passes this while our own vehicle stands.
  [[nodiscard]] double Reach() const;

 private:
  [[nodiscard]] Offset Sway(double time_s) const;
  [[nodiscard]] double Jolts(double time_s) const;

  CameraOptions options_;
  std::uint32_t seed_;
  double rock_hz_;
  double idle_hz_;
};

}  // namespace stopngo
