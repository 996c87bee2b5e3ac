// lane.h: the vehicles in our own lane: where each is and what of it is lit at a time.
#pragma once

#include <cstdint>

#include "scene/lane/vehicle.h"
#include "scene/motion/track.h"

namespace stopngo {

class LaneVehicle {
 public:
  LaneVehicle(const VehicleOptions& options, double texels_per_metre, double most_texels, std::uint64_t seed);
  [[nodiscard]] const Vehicle& Look() const { return vehicle_; }
  [[nodiscard]] VehicleState At(double time_s) const;
  /// Whether At gives the same but for lamps as at the beginning.
  [[nodiscard]] bool Waits(double time_s) const;
  [[nodiscard]] std::vector<Span> Moving(double end_s) const { return track_.Moving(end_s); }

 private:
  [[nodiscard]] double Brake(double time_s) const;
  [[nodiscard]] double Blink(double time_s) const;

  VehicleOptions options_;
  Vehicle vehicle_;
  Track track_;
  double blink_phase_;
};

}  // namespace stopngo
