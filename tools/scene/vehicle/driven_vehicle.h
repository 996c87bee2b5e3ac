// driven_vehicle.h: a vehicle on its way: where it is and what of it is lit at a time.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "scene/motion/route.h"
#include "scene/motion/track.h"
#include "scene/recipe/recipe.h"
#include "scene/stage/actor.h"
#include "scene/vehicle/state.h"
#include "scene/vehicle/vehicle.h"

namespace stopngo {

class DrivenVehicle : public Actor {
 public:
  /// One whose way, speeds and lamps the options tell.
  DrivenVehicle(const VehicleOptions& options, const Texels& texels, std::uint64_t seed);
  /// One on a way of its own, along which its middle moves.
  DrivenVehicle(const VehicleOptions& options, Vehicle vehicle, const Route& route, Track track);

  [[nodiscard]] const Vehicle& Body() const { return vehicle_; }
  [[nodiscard]] VehicleState At(double time_s) const;
  /// The state with the pose of its rear's middle.
  [[nodiscard]] VehicleState RearAt(double time_s) const { return vehicle_.AtRear(At(time_s)); }
  [[nodiscard]] std::vector<Span> Moving(double end_s) const { return track_.Moving(end_s); }

  [[nodiscard]] std::optional<double> Distance(double time_s, const Camera& camera) const override;
  void Draw(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const override;
  [[nodiscard]] bool Rests(double time_s) const override;
  void DrawLamps(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const override;

 private:
  [[nodiscard]] double Lift(double time_s) const;
  [[nodiscard]] double Brake(double time_s) const;
  [[nodiscard]] double Blink(double time_s) const;

  VehicleOptions options_;
  Vehicle vehicle_;
  Route route_;
  Track track_;
  double blink_phase_ = 0;
};

}  // namespace stopngo
