// events.cpp: drawing what happens in a scene.
#include "scene/script/events.h"

#include <algorithm>
#include <array>

#include "scene/motion/track.h"
#include "scene/recipe/chance.h"
#include "scene/recipe/kinds.h"
#include "scene/script/distributions.h"

namespace stopngo {
namespace {

/// Whether a vehicle that starts at 0 so far ahead has soon gained enough for its start to be told at all.
bool Noticed(const MotionOptions& motion, double distance_m) {
  const double gained_m = Track(motion).Position(draw::kNoticed_s);
  return gained_m >= std::clamp(draw::kNoticed * distance_m, draw::kNoticed_m.low, draw::kNoticed_m.high);
}

void AddActor(SceneOptions& scene, std::span<const ActorKind> kinds, double at_s, Random& random) {
  const ActorKind kind = OneOf(kinds, random);
  scene.actors.push_back({kind, random.Next(), at_s});
}

void AddOverlay(SceneOptions& scene, OverlayKind kind, double at_s, Random& random) {
  scene.overlays.push_back({kind, random.Next(), at_s});
}

}  // namespace

void AddDeparture(SceneOptions& scene, double start_s, Random& random) {
  VehicleOptions& lead = scene.lead;
  double acceleration = 0;
  double build_up_s = 0;
  do {
    acceleration = Chance(random, 0.5) ? Draw(draw::kUsualStart, random) : DrawLog(draw::kAnyStart, random);
    build_up_s = DrawLog(draw::kBuildUp_s, random);
  } while (!Noticed({0, {{0, kTownSpeed, acceleration, build_up_s}}}, lead.distance_m));
  const bool braked = lead.braking;
  LeaveAt(lead, start_s, acceleration, build_up_s, random.Uniform(5, kTownSpeed));
  lead.braking = braked;
  lead.brake_switches_s.clear();
  if (braked) {
    lead.brake_switches_s.push_back(start_s - random.Uniform(0.1, 1.5));
  }
  for (VehicleOptions& ahead : scene.others) {
    const double early_s = random.Uniform(0.5, 2.2);
    LeaveAt(ahead, start_s - early_s, acceleration * random.Uniform(1, 1.4), build_up_s);
  }
  const double way = random.Uniform(0, 1);
  if (way < draw::kTurnsOff) {
    lead.turn_after_m = Draw(draw::kCornerAfter_m, random);
    lead.turn_radius_m = DrawAside(draw::kCornerRadius_m, random);
    lead.indicator = lead.turn_radius_m > 0 ? Indicator::kRight : Indicator::kLeft;
  } else if (way < draw::kTurnsOff + draw::kBends) {
    lead.turn_after_m = Draw(draw::kBendAfter_m, random);
    const double side = EitherSide(random);
    lead.turn_radius_m = side * DrawLog(draw::kBendRadius_m, random);
  }
  if (Chance(random, 0.3)) {  // we follow
    const double follow_s = start_s + random.Uniform(3.2, 5);
    const double pull = random.Uniform(0.6, 1.8);
    scene.ego.changes.push_back({follow_s, random.Uniform(2, 8), std::min(pull, acceleration)});
  }
}

void AddCreep(SceneOptions& scene, double start_s, Random& random) {
  VehicleOptions& lead = scene.lead;
  double acceleration = 0;
  double speed = 0;
  do {
    acceleration = Draw(draw::kCreepStart, random);
    speed = Draw(draw::kCreepSpeed, random);
  } while (!Noticed({0, {{0, speed, acceleration, 0.4}}}, lead.distance_m));
  const double hold_s = Draw(draw::kCreepHold_s, random);
  const double braking_s = start_s + speed / acceleration + 0.5 + hold_s;
  lead.motion = {0, {{start_s, speed, acceleration, 0.4}, {braking_s, 0, random.Uniform(0.8, 2), 0.4}}};
  lead.braking = true;
  lead.brake_switches_s = {start_s - random.Uniform(0.1, 0.8), braking_s};
  for (VehicleOptions& ahead : scene.others) {
    const double early_s = random.Uniform(0.4, 2);
    ahead.motion = lead.motion;
    for (SpeedChange& change : ahead.motion.changes) {
      change.start_s -= early_s;
    }
    ahead.brake_switches_s = {start_s - early_s - 0.3, braking_s - early_s};
  }
}

void AddCrossing(SceneOptions& scene, double at_s, Random& random) {
  constexpr std::array<ActorKind, 6> kKinds{ActorKind::kCrossing,     ActorKind::kCrossing,
                                            ActorKind::kCrossingNear, ActorKind::kCrossingQueue,
                                            ActorKind::kTurning,      ActorKind::kCyclist};
  AddActor(scene, kKinds, at_s, random);
}

void AddPedestrians(SceneOptions& scene, double at_s, Random& random) {
  constexpr std::array<ActorKind, 4> kKinds{ActorKind::kPedestrian, ActorKind::kPedestrian, ActorKind::kCrowd,
                                            ActorKind::kCyclist};
  AddActor(scene, kKinds, at_s, random);
}

void AddNeighbours(SceneOptions& scene, double at_s, Random& random) {
  constexpr std::array<ActorKind, 9> kKinds{
      ActorKind::kNeighbourStarts, ActorKind::kNeighbourStarts, ActorKind::kNeighbourStops,
      ActorKind::kOvertaking,      ActorKind::kOncoming,        ActorKind::kReflection,
      ActorKind::kBirds,           ActorKind::kStream,          ActorKind::kParking};
  AddActor(scene, kKinds, at_s, random);
}

void AddDrivingIn(SceneOptions& scene, double at_s, Random& random) {
  constexpr std::array<ActorKind, 4> kKinds{ActorKind::kDrivingIn, ActorKind::kDrivingIn,
                                            ActorKind::kDrivingIn, ActorKind::kTurning};
  AddActor(scene, kKinds, at_s, random);
}

void AddStream(SceneOptions& scene, double at_s, Random& random) {
  constexpr std::array<ActorKind, 1> kKinds{ActorKind::kStream};
  AddActor(scene, kKinds, at_s, random);
}

void AddWipers(SceneOptions& scene, double at_s, Random& random) {
  AddOverlay(scene, OverlayKind::kWipers, at_s, random);
  if (Chance(random, 0.5)) {
    AddOverlay(scene, Chance(random, 0.5) ? OverlayKind::kRain : OverlayKind::kDrops, at_s, random);
  }
}

void AddRain(SceneOptions& scene, double at_s, Random& random) {
  constexpr std::array<OverlayKind, 3> kKinds{OverlayKind::kRain, OverlayKind::kDrops, OverlayKind::kSnow};
  AddOverlay(scene, OneOf(kKinds, random), at_s, random);
  scene.light.wet = std::max(scene.light.wet, 0.4F);
}

void AddLamps(SceneOptions& scene, double at_s, Random& random) {
  VehicleOptions& lead = scene.lead;
  switch (random.Below(4)) {
    case 0: {  // the foot leaves the brake and comes back, once or often
      const std::uint32_t times = 1 + random.Below(4);
      double next_s = at_s;
      for (std::uint32_t i = 0; i < times; i++) {
        lead.brake_switches_s.push_back(next_s);
        next_s += random.Uniform(0.3, 2.5);
      }
      std::sort(lead.brake_switches_s.begin(), lead.brake_switches_s.end());
      break;
    }
    case 1:
      lead.indicator = static_cast<Indicator>(1 + random.Below(3));
      lead.indicator_from_s = at_s;
      lead.indicator_to_s = at_s + random.Uniform(3, 12);
      break;
    case 2:
      lead.rock_s = at_s;
      lead.rock_m = random.Uniform(0.01, 0.05);
      break;
    default:
      lead.tail_lamps = true;
      lead.rock_s = at_s;
      lead.rock_m = random.Uniform(0, 0.02);
      // Nobody opens the boot of a vehicle that is about to leave.
      if (Track(lead.motion).Position(scene.length_s) == 0) {
        lead.boot_s = at_s;
      }
  }
}

void AddExposure(SceneOptions& scene, double at_s, Random& random) {
  switch (random.Below(5)) {
    case 0:
    case 1: {
      const double ramp_s = LogUniform(random, 0.05, 3);
      const double factor = Chance(random, 0.5) ? random.Uniform(0.55, 0.9) : random.Uniform(1.1, 1.7);
      scene.sensor.exposure.push_back({at_s, ramp_s, factor});
      if (Chance(random, 0.6)) {
        scene.sensor.exposure.push_back({at_s + ramp_s + random.Uniform(0, 3), ramp_s, 1 / factor});
      }
      break;
    }
    case 2:
      AddOverlay(scene, OverlayKind::kShade, at_s, random);
      break;
    case 3:
      AddOverlay(scene, OverlayKind::kBeacon, at_s, random);
      break;
    default:
      scene.actors.push_back({ActorKind::kHeadlampSweep, random.Next(), at_s});
  }
}

void AddShaking(SceneOptions& scene, double at_s, Random& random) {
  if (Chance(random, 0.3)) {
    scene.camera.gusts = random.Uniform(1, 3.5);
  }
  const std::uint32_t times = 1 + random.Below(3);
  double next_s = at_s;
  for (std::uint32_t i = 0; i < times; i++) {
    const double size = LogUniform(random, 0.8, 6);
    scene.camera.jolts.push_back({next_s, Chance(random, 0.5) ? size : -size});
    next_s += random.Uniform(0.4, 4);
  }
}

std::span<const Distractor> Distractors() {
  static constexpr std::array<Distractor, 8> kAll{AddCrossing, AddPedestrians, AddNeighbours, AddWipers,
                                                  AddRain,     AddLamps,       AddExposure,   AddShaking};
  return kAll;
}

}  // namespace stopngo
