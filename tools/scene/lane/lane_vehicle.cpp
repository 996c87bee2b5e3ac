// lane_vehicle.cpp: motion and lamps of the vehicles in our own lane.
#include "scene/lane/lane_vehicle.h"

#include <algorithm>
#include <cmath>

#include "base/streams.h"
#include "host/common/exact_math.h"

namespace stopngo {
namespace {

constexpr double kLampFade_s = 0.12;
constexpr double kBlinkHz = 1.5;
constexpr double kSquat = 0.006;  // by how many metres 1 m/s² presses the rear down
constexpr double kTurn = 6.283185307179586;

}  // namespace

LaneVehicle::LaneVehicle(const VehicleOptions& options, double texels_per_metre, double most_texels,
                         std::uint64_t seed)
    : options_(options),
      rear_(PaintRear(options, texels_per_metre, most_texels, seed)),
      track_(options.motion),
      blink_phase_(RandomOf(seed, stream::kBlink).Uniform(0, 1)) {}

double LaneVehicle::Brake(double time_s) const {
  double lit = options_.braking ? 1 : 0;
  for (const double at : options_.brake_switches_s) {
    const double share = std::clamp((time_s - at) / kLampFade_s, 0.0, 1.0);
    lit += (1 - 2 * lit) * share;
  }
  return lit;
}

double LaneVehicle::Blink(double time_s) const {
  if (options_.indicator == Indicator::kNone || time_s < options_.indicator_from_s ||
      time_s > options_.indicator_to_s) {
    return 0;
  }
  return std::clamp(0.5 + 4 * SineOfTurns(kBlinkHz * time_s + blink_phase_), 0.0, 1.0);
}

VehicleState LaneVehicle::At(double time_s) const {
  const double travelled = track_.Position(time_s);
  VehicleState state{options_.offset_m, options_.distance_m + travelled};
  const double turned = travelled - options_.turn_after_m;
  if (options_.turn_radius_m != 0 && turned > 0) {
    // A quarter of a turn at most.
    const double radius = std::fabs(options_.turn_radius_m);
    const double turns = std::min(turned / radius / kTurn, 0.22);
    const double beyond = turned - turns * kTurn * radius;
    const double sine = SineOfTurns(turns);
    state.cosine = std::max(0.2, SineOfTurns(turns + 0.25));
    const double side = radius * (1 - state.cosine) + beyond * sine;
    state.x += options_.turn_radius_m > 0 ? side : -side;
    state.z = options_.distance_m + options_.turn_after_m + radius * sine + beyond * state.cosine;
  }
  const double acceleration = (track_.Speed(time_s + 0.1) - track_.Speed(time_s - 0.15)) / 0.25;
  state.lift = track_.Speed(time_s) == 0 && track_.Speed(time_s + 0.1) == 0 ? 0 : -kSquat * acceleration;
  const double rocking = time_s - options_.rock_s;
  if (options_.rock_m > 0 && rocking > 0) {
    const double swing = SineOfTurns(1.4 * rocking) * std::max(0.0, 1 - std::fabs(rocking - 2) / 2);
    state.lift += options_.rock_m * swing;
  }
  state.boot = std::clamp((time_s - options_.boot_s) / 1.6, 0.0, 1.0);
  state.brake = Brake(time_s);
  state.tail = options_.tail_lamps ? 1 : 0;
  const double blink = Blink(time_s);
  state.left = options_.indicator == Indicator::kRight ? 0 : blink;
  state.right = options_.indicator == Indicator::kLeft ? 0 : blink;
  return state;
}

bool LaneVehicle::Waits(double time_s) const {
  const VehicleState now = At(time_s);
  return track_.Position(time_s) == 0 && now.lift == 0 && now.boot == 0 && track_.Speed(time_s) == 0;
}

}  // namespace stopngo
