// lane_vehicle.h: a vehicle in our own lane: where it is and what of it is lit at a time.
#pragma once

#include <cstdint>
#include <vector>

#include "scene/lane/rear.h"
#include "scene/lane/rear_view.h"
#include "scene/motion/track.h"
#include "scene/recipe/recipe.h"

namespace stopngo {

class LaneVehicle {
 public:
  LaneVehicle(const VehicleOptions& options, double texels_per_metre, double most_texels, std::uint64_t seed);
  [[nodiscard]] const Rear& Look() const { return rear_; }
  [[nodiscard]] VehicleState At(double time_s) const;
  /// Whether At gives the same but for lamps as at the beginning.
  [[nodiscard]] bool Waits(double time_s) const;
  [[nodiscard]] std::vector<Span> Moving(double end_s) const { return track_.Moving(end_s); }

 private:
  [[nodiscard]] double Brake(double time_s) const;
  [[nodiscard]] double Blink(double time_s) const;

  VehicleOptions options_;
  Rear rear_;
  Track track_;
  double blink_phase_;
};

}  // namespace stopngo
