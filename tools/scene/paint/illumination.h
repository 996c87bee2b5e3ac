// illumination.h: the light that falls onto what moves in a scene.
#pragma once

namespace stopngo {

/// The light that falls onto things, as shares of a clear day's grey levels.
struct Illumination {
  double ambient = 1;
  double headlamp = 0;  ///< what our own headlamps add to a thing 5 m ahead
  double lamps = 0;     ///< 0 … 1, how brightly vehicles' lamps outshine their surroundings

  [[nodiscard]] double At(double distance_m) const {
    return ambient + headlamp * 50 / (25 + distance_m * distance_m);
  }
};

}  // namespace stopngo
