// light.h: how a scene is lit: daylight, our own headlamps, street lamps.
#pragma once

#include <algorithm>

namespace stopngo {

constexpr float kBlack = 16;  // grey level of no light at all
constexpr float kWhite = 235;

/// Grey levels are light as cameras code it, which is about its square root, so factors here are the
/// square roots of what a light meter shows.
struct Light {
  float ambient = 1;    ///< what is left of daylight; at night what the sky and the town give
  float headlamps = 0;  ///< of our own vehicle, at the middle of their cone close by
  float street = 0;     ///< below a street lamp
  float wet = 0;        ///< how much of lamps the road mirrors, 0 … 1
  float windows = 0;    ///< share of windows that are lit

  /// The factor for a surface at a point as the camera sees it: metres to the right of its axis, above the
  /// road and ahead. Dipped headlamps reach 40 m, widen by a third to each side and end at bumper height.
  [[nodiscard]] float At(float across, float height, float ahead) const {
    if (headlamps <= 0 || ahead <= 0) return ambient;
    const float side = across / (1.2F + 0.45F * ahead);
    const float above = std::max(0.0F, height - 0.75F) * 1.6F;
    const float cone = 1 / ((1 + ahead * 0.055F) * (1 + side * side * side * side) * (1 + above * above));
    return ambient + headlamps * cone;
  }
  /// The factor for a thing as a whole, at a distance.
  [[nodiscard]] double Around(double distance_m) const {
    return static_cast<double>(ambient) +
           0.8 * static_cast<double>(headlamps) * 50 / (25 + distance_m * distance_m);
  }
  /// 0 day … 1 night: how brightly vehicles' lamps outshine their surroundings.
  [[nodiscard]] double Night() const { return std::clamp(1.2 - static_cast<double>(ambient), 0.0, 1.0); }
  /// What a surface of a grey level by day looks like under a factor.
  [[nodiscard]] static float Lit(float tone, float factor) { return kBlack + (tone - kBlack) * factor; }
};

}  // namespace stopngo
