// driving.cpp: drawing how our own vehicle drives.
#include "scene/script/driving.h"

#include <algorithm>
#include <array>

#include "scene/motion/track.h"
#include "scene/recipe/chance.h"
#include "scene/script/events.h"
#include "scene/script/setting.h"

namespace stopngo {
namespace {

/// Vehicles in the lanes beside, which drive about as fast as we do.
void AddCompany(SceneOptions& scene, double speed, Random& random) {
  scene.others.clear();
  const std::uint32_t number = random.Below(3);
  for (std::uint32_t i = 0; i < number; i++) {
    VehicleOptions other = scene.lead;
    other.tone = random.Uniform(20, 220);
    other.kind = random.Below(2) == 0 ? VehicleKind::kSaloon : VehicleKind::kTransporter;
    other.turn_radius_m = 0;
    other.offset_m = Chance(random, 0.7) ? 3.5 : -3.5;
    other.offset_m += random.Uniform(-0.3, 0.3);
    other.distance_m = random.Uniform(6, 40);
    other.motion = {speed * random.Uniform(0.8, 1.3), {}};
    other.braking = false;
    other.brake_switches_s.clear();
    scene.others.push_back(other);
  }
}

/// We come up behind a vehicle that waits, and stop.
void Approach(SceneOptions& scene, Random& random) {
  const double speed = LogUniform(random, 2, 14);
  const double braking = random.Uniform(0.9, 3);
  const double longest_s = scene.length_s - 3 - speed / braking;
  scene.ego = {speed, {{random.Uniform(0.5, std::max(longest_s, 1.0)), 0, braking, 0.7}}};
  const double way = Track(scene.ego).Position(scene.length_s + 10);
  for (VehicleOptions& ahead : scene.others) {
    ahead.distance_m += way;
  }
  scene.lead.distance_m += way;
}

/// We drive behind another vehicle and do what it does a moment later.
void Follow(SceneOptions& scene, Random& random) {
  const double speed = random.Uniform(2, 16);
  scene.ego.speed = speed;
  scene.lead.motion = {speed * random.Uniform(0.95, 1.05), {}};
  scene.lead.braking = false;
  scene.lead.distance_m = std::max(scene.lead.distance_m, 0.4 * speed) + random.Uniform(1, 8);
  double current = speed;
  double at_s = random.Uniform(0, 4);
  while (at_s < scene.length_s - 1) {
    const double next = std::clamp(current * random.Uniform(0.5, 1.5), 1.5, 20.0);
    const double acceleration = random.Uniform(0.5, 2.2);
    if (next < current) {
      scene.lead.brake_switches_s.push_back(at_s);
      scene.lead.brake_switches_s.push_back(at_s + (current - next) / acceleration + 0.8);
    }
    scene.lead.motion.changes.push_back({at_s, next, acceleration});
    scene.ego.changes.push_back({at_s + random.Uniform(0.5, 1.3), next, acceleration * 1.1});
    current = next;
    at_s += random.Uniform(3, 7);
  }
  std::sort(scene.lead.brake_switches_s.begin(), scene.lead.brake_switches_s.end());
  AddCompany(scene, speed, random);
}

void Bend(SceneOptions& scene, double most, Random& random) {
  // The heading swings out and back or stays: a lane's bend, or a corner.
  const double speed = random.Uniform(0.2 * most, most);
  const double rate = Chance(random, 0.5) ? speed : -speed;
  const double at_s = random.Uniform(0.3, 0.5 * scene.length_s);
  const double hold_s = std::min(random.Uniform(0.8, 3), 0.11 / speed);
  scene.ego_turning.changes.push_back({at_s, rate, most, 0.5});
  scene.ego_turning.changes.push_back({at_s + hold_s, 0, most, 0.5});
}

void DriveFreely(SceneOptions& scene, Random& random) {
  LeaveNobodyAhead(scene, random);
  const double speed = random.Uniform(3, 22);
  scene.ego = {speed, {{random.Uniform(0, scene.length_s), speed * random.Uniform(0.6, 1.3), 1.2}}};
  AddCompany(scene, speed, random);
  if (Chance(random, 0.7)) Bend(scene, 0.015, random);
}

void TurnOff(SceneOptions& scene, Random& random) {
  scene.others.clear();
  if (Chance(random, 0.7)) LeaveNobodyAhead(scene, random);
  scene.lead.distance_m += 8;
  const double speed = random.Uniform(2, 6);
  const double start_s = random.Uniform(0, 4);
  scene.ego = Chance(random, 0.5) ? MotionOptions{speed, {}}
                                  : MotionOptions{0, {{start_s, speed, random.Uniform(0.8, 2)}}};
  Bend(scene, 0.06, random);
}

/// A little forwards or backwards while the vehicle ahead stands, or has left some room.
void Shuffle(SceneOptions& scene, Random& random) {
  const bool back = Chance(random, 0.35);
  const double start_s = random.Uniform(1, scene.length_s - 6);
  const double speed = random.Uniform(0.4, 1.3);
  const double pull = random.Uniform(0.5, 1.2);
  if (!back) {
    scene.lead.distance_m += 2.5;
    for (VehicleOptions& ahead : scene.others) ahead.distance_m += 2.5;
  }
  scene.ego = {0,
               {{start_s, back ? -speed : speed, pull, 0.5},
                {start_s + speed / pull + random.Uniform(0.3, 1.3), 0, pull, 0.5}}};
}

/// Both start, we a moment later: too soon for anybody to need telling.
void StartTogether(SceneOptions& scene, Random& random) {
  const double start_s = random.Uniform(3, scene.length_s - 4);
  AddDeparture(scene, start_s, random);
  const SpeedChange& lead = scene.lead.motion.changes.front();
  scene.ego.changes = {{start_s + random.Uniform(0.1, 0.9), lead.speed, 0.9 * lead.acceleration}};
}

}  // namespace

void AddDriving(SceneOptions& scene, Random& random) {
  using Manner = void (*)(SceneOptions&, Random&);
  constexpr std::array<Manner, 8> kManners{Approach,    Approach, Follow,  Follow,
                                           DriveFreely, TurnOff,  Shuffle, StartTogether};
  OneOf(kManners, random)(scene, random);
}

}  // namespace stopngo
