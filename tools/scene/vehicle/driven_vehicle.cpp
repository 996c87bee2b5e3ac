// driven_vehicle.cpp: motion and lamps of vehicles.
#include "scene/vehicle/driven_vehicle.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/streams.h"
#include "host/common/exact_math.h"
#include "scene/space/projection.h"

namespace stopngo {
namespace {

constexpr double kLampFade_s = 0.12;
constexpr double kBlinkHz = 1.5;
constexpr double kSquat = 0.006;  // by how many metres 1 m/s² presses the rear down
constexpr double kCorner = 0.22;  // turns by which a vehicle turns off
constexpr double kFarthest_m = 150;
constexpr double kViewSlope = 0.9;  // metres to the side per metre ahead that no lens here sees beyond

/// The way of a vehicle's middle, which is half of its length ahead of the place that the options tell.
Route RouteOf(const VehicleOptions& options, double length) {
  const double sine = SineOfTurns(options.heading);
  const double cosine = SineOfTurns(options.heading + 0.25);
  Route route{options.offset_m + 0.5 * length * sine, options.distance_m + 0.5 * length * cosine,
              options.heading};
  if (options.turn_radius_m != 0) {
    route.straight = options.turn_after_m;
    route.radius = std::fabs(options.turn_radius_m);
    route.bend = options.turn_radius_m > 0 ? kCorner : -kCorner;
  }
  return route;
}

}  // namespace

DrivenVehicle::DrivenVehicle(const VehicleOptions& options, const Texels& texels, std::uint64_t seed)
    : options_(options),
      vehicle_(options, texels, seed),
      route_(RouteOf(options, vehicle_.Length())),
      track_(options.motion),
      blink_phase_(RandomOf(seed, stream::kBlink).Uniform(0, 1)) {}

DrivenVehicle::DrivenVehicle(const VehicleOptions& options, Vehicle vehicle, const Route& route, Track track)
    : options_(options), vehicle_(std::move(vehicle)), route_(route), track_(std::move(track)) {}

double DrivenVehicle::Brake(double time_s) const {
  if (options_.brakes_by_motion) return track_.BrakingOrStanding(time_s) ? 1 : 0;
  double lit = options_.braking ? 1 : 0;
  for (const double at : options_.brake_switches_s) {
    const double share = std::clamp((time_s - at) / kLampFade_s, 0.0, 1.0);
    lit += (1 - 2 * lit) * share;
  }
  return lit;
}

double DrivenVehicle::Blink(double time_s) const {
  if (options_.indicator == Indicator::kNone || time_s < options_.indicator_from_s ||
      time_s > options_.indicator_to_s) {
    return 0;
  }
  return std::clamp(0.5 + 4 * SineOfTurns(kBlinkHz * time_s + blink_phase_), 0.0, 1.0);
}

double DrivenVehicle::Lift(double time_s) const {
  double lift = 0;
  if (track_.Speed(time_s) != 0 || track_.Speed(time_s + 0.1) != 0) {
    lift = -kSquat * (track_.Speed(time_s + 0.1) - track_.Speed(time_s - 0.15)) / 0.25;
  }
  const double rocking = time_s - options_.rock_s;
  if (options_.rock_m > 0 && rocking > 0) {
    const double swing = SineOfTurns(1.4 * rocking) * std::max(0.0, 1 - std::fabs(rocking - 2) / 2);
    lift += options_.rock_m * swing;
  }
  return lift;
}

VehicleState DrivenVehicle::At(double time_s) const {
  VehicleState state;
  state.travelled = track_.Position(time_s);
  state.pose = route_.At(state.travelled);
  state.lift = Lift(time_s);
  state.boot = std::clamp((time_s - options_.boot_s) / 1.6, 0.0, 1.0);
  state.brake = Brake(time_s);
  state.tail = options_.tail_lamps ? 1 : 0;
  const double blink = Blink(time_s);
  state.left = options_.indicator == Indicator::kRight ? 0 : blink;
  state.right = options_.indicator == Indicator::kLeft ? 0 : blink;
  return state;
}

bool DrivenVehicle::Rests(double time_s) const {
  return track_.Position(time_s) == track_.Position(0) && track_.Speed(time_s) == 0 && Lift(time_s) == 0 &&
         time_s <= options_.boot_s;
}

std::optional<double> DrivenVehicle::Distance(double time_s, const Camera& camera) const {
  const Pose pose = route_.At(track_.Position(time_s));
  const auto [nearest, farthest] = vehicle_.Reach(pose, camera);
  const double aside = std::fabs(PlaceOf(camera, pose.x, pose.z).across) - vehicle_.Length();
  if (farthest < kNearest_m || nearest > kFarthest_m || aside > kViewSlope * farthest) return std::nullopt;
  return nearest;
}

void DrivenVehicle::Draw(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const {
  vehicle_.DrawBody(At(time_s), camera, light, sheet);
}

void DrivenVehicle::DrawLamps(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const {
  vehicle_.DrawLamps(At(time_s), camera, light, sheet);
}

}  // namespace stopngo
