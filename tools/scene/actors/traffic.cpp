// traffic.cpp: where the traffic's vehicles drive, drawn from random numbers.
#include "scene/actors/traffic.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "host/common/exact_math.h"
#include "scene/actors/figure.h"
#include "scene/motion/route.h"
#include "scene/motion/track.h"
#include "scene/paint/sheet.h"
#include "scene/recipe/chance.h"
#include "scene/recipe/light.h"
#include "scene/space/pose.h"
#include "scene/vehicle/driven_vehicle.h"
#include "scene/vehicle/vehicle.h"

namespace stopngo {
namespace {

constexpr double kTexelsPerPixel = 1.2;

VehicleKind AnyKind(Random& random, std::uint32_t of) {
  // Cars are the most, and come first: of limits how long a vehicle may be.
  constexpr std::array<VehicleKind, 12> kKinds{
      VehicleKind::kHatchback, VehicleKind::kSaloon, VehicleKind::kMinivan,     VehicleKind::kHatchback,
      VehicleKind::kOffRoad,   VehicleKind::kSaloon, VehicleKind::kTransporter, VehicleKind::kMinivan,
      VehicleKind::kLorry,     VehicleKind::kBus,    VehicleKind::kTram,        VehicleKind::kLorry};
  return kKinds[random.Below(of)];
}

constexpr std::uint32_t kShort = 8;
constexpr std::uint32_t kNoTram = 10;
constexpr std::uint32_t kAll = 12;

Vehicle Build(VehicleKind kind, const Stage& stage, double nearest_m, Random& random) {
  VehicleOptions options;
  options.kind = kind;
  return {options, {kTexelsPerPixel * stage.focal / std::max(nearest_m, 1.0)}, random.Next()};
}

void Add(Actors& actors, const Stage& stage, Vehicle vehicle, const Route& route, const Track& track) {
  VehicleOptions lamps;
  lamps.brakes_by_motion = true;
  lamps.tail_lamps = stage.night > 0.4;
  actors.push_back(std::make_unique<DrivenVehicle>(lamps, std::move(vehicle), route, track));
}

/// A way across the street, whose position is 0 in front of us.
Route Across(double z, double direction) { return {0, z, 0.25 * direction}; }

/// Such a passage: steady, braking to a halt, or starting from rest near the picture's edge.
Track CrossingTrack(const Stage& stage, double z, double most, Random& random) {
  const double when = stage.event_s + random.Uniform(-1.5, 1.5);
  const double edge = stage.HalfWidthAt(z);
  const double speed = random.Uniform(2, most);
  switch (random.Below(4)) {
    case 0: {
      const double deceleration = random.Uniform(1, 3.5);
      const double halt = random.Uniform(-0.6, 0.9) * edge;
      const double way = 0.5 * speed * speed / deceleration;
      Track track(halt - way - speed * when, speed);
      track.Stop(when, deceleration);
      return track;
    }
    case 1: {
      Track track(random.Uniform(-1.3, 0.2) * edge, 0);
      track.Start(when, random.Uniform(0.5, 3), speed);
      return track;
    }
    default:
      return {random.Uniform(-0.5, 0.5) * edge - speed * when, speed};
  }
}

/// The middle of a lane beside ours, with room for a vehicle.
double LaneX(const Stage& stage, double side, double half_width, Random& random) {
  return stage.Beside(side, half_width, random.Uniform(0.45, 1.7));
}

struct Neighbour {
  Vehicle vehicle;
  double x;
  double z;  ///< of its middle, where it stands or comes to stand
};

Neighbour MakeNeighbour(const Stage& stage, double side, double behind_lead, Random& random) {
  Vehicle vehicle = Build(AnyKind(random, kNoTram), stage, 2.5, random);
  const double x = LaneX(stage, side, vehicle.HalfWidth(), random);
  const double z = stage.lead_distance(0) + behind_lead + 0.5 * vehicle.Length();
  return {std::move(vehicle), x, z};
}

}  // namespace

Actors MakeCrossing(const Stage& stage, Random& random) {
  Actors actors;
  const std::uint32_t count = 1 + random.Below(2);
  for (std::uint32_t i = 0; i < count; i++) {
    const double nearest = stage.lead_distance(0) + 7;
    const double z = random.Uniform(nearest, std::max(30.0, nearest + 5));
    Vehicle vehicle = Build(AnyKind(random, kAll), stage, z, random);
    const Route route = Across(z, EitherSide(random));
    Add(actors, stage, std::move(vehicle), route, CrossingTrack(stage, z, 18, random));
  }
  return actors;
}

Actors MakeCrossingNear(const Stage& stage, Random& random) {
  const double lead = stage.lead_distance(0);
  constexpr double kRoom_m = 4.6;  // for a car and a little air on both sides
  if (lead < kRoom_m) {
    return MakeCyclists(stage, random);
  }
  Actors actors;
  const double z = random.Uniform(2.6, std::max(2.7, lead - 1.5));
  const VehicleKind kind = AnyKind(random, lead - z > 1.8 ? kNoTram : kShort);
  Vehicle vehicle = Build(kind, stage, z - 0.9, random);
  const Route route = Across(z, EitherSide(random));
  Add(actors, stage, std::move(vehicle), route, CrossingTrack(stage, z, 8, random));
  return actors;
}

Actors MakeCrossingQueue(const Stage& stage, Random& random) {
  Actors actors;
  const double nearest = stage.lead_distance(0) + 7;
  const double z = random.Uniform(nearest, nearest + 12);
  const Route route = Across(z, EitherSide(random));
  const double speed = random.Uniform(2, 12);
  const double edge = stage.HalfWidthAt(z);
  const double first = edge - speed * std::max(0.0, stage.event_s - random.Uniform(0, 4));
  const std::uint32_t count = 3 + random.Below(5);
  double at = first;
  for (std::uint32_t i = 0; i < count; i++) {
    Vehicle vehicle = Build(AnyKind(random, kNoTram), stage, z, random);
    at -= 0.5 * vehicle.Length();
    const Track track(at, speed);
    at -= 0.5 * vehicle.Length() + random.Uniform(2, 12);
    Add(actors, stage, std::move(vehicle), route, track);
  }
  return actors;
}

Actors MakeTurning(const Stage& stage, Random& random) {
  Actors actors;
  const double radius = random.Uniform(4.5, 8);
  const double corner = stage.lead_distance(0) + 7 + random.Uniform(0, 8) + radius;
  const double speed = random.Uniform(3, 7);
  Vehicle vehicle = Build(AnyKind(random, kNoTram), stage, corner - radius, random);
  const double side = EitherSide(random);
  Route route;
  if (random.Below(2) == 0) {
    // From a cross street into ours: away from us, or towards us in the other lane.
    const double bend = EitherSide(random) * 0.25;
    route = {-side * 20, corner, 0.25 * side, 20 - radius + random.Uniform(-4, 1), radius, bend};
  } else {
    // From the lane that leads towards us into a cross street.
    const double lane = -LaneX(stage, 1, vehicle.HalfWidth(), random);
    route = {lane, corner + 20, 0.5, 20, radius, 0.25 * side};
  }
  const double when = stage.event_s + random.Uniform(-1.5, 1.5);
  Add(actors, stage, std::move(vehicle), route, Track(20 - speed * when, speed));
  return actors;
}

Actors MakeNeighbours(const Stage& stage, Random& random) {
  Actors actors;
  const std::uint32_t sides = 1 + random.Below(3);  // left, right or both
  for (const double side : {-1.0, 1.0}) {
    if ((sides & (side < 0 ? 1U : 2U)) == 0) {
      continue;
    }
    double behind = random.Uniform(-2.5, 3);
    for (std::uint32_t left = 1 + random.Below(2); left > 0; left--) {
      Neighbour neighbour = MakeNeighbour(stage, side, behind, random);
      behind += neighbour.vehicle.Length() + random.Uniform(1, 3);
      Add(actors, stage, std::move(neighbour.vehicle), {neighbour.x, neighbour.z}, Track(0, 0));
    }
  }
  return actors;
}

Actors MakeNeighbourStarts(const Stage& stage, Random& random) {
  Actors actors;
  const double side = EitherSide(random);
  Neighbour neighbour = MakeNeighbour(stage, side, random.Uniform(-3, 4), random);
  Track track(0, 0);
  const double when = stage.event_s + random.Uniform(-2, 2);
  const double acceleration = random.Uniform(0.3, 3);
  track.Start(when, acceleration, random.Uniform(5, 14));
  Add(actors, stage, std::move(neighbour.vehicle), {neighbour.x, neighbour.z}, track);
  return actors;
}

Actors MakeNeighbourStops(const Stage& stage, Random& random) {
  Actors actors;
  const double side = EitherSide(random);
  Neighbour neighbour = MakeNeighbour(stage, side, random.Uniform(-2, 4), random);
  const double speed = random.Uniform(3, 11);
  const double deceleration = random.Uniform(1, 3.5);
  const double when = stage.event_s + random.Uniform(-1.5, 1.5) - 0.5 * speed / deceleration;
  Track track(-0.5 * speed * speed / deceleration - speed * when, speed);
  track.Stop(when, deceleration);
  Add(actors, stage, std::move(neighbour.vehicle), {neighbour.x, neighbour.z}, track);
  return actors;
}

Actors MakeOvertaking(const Stage& stage, Random& random) {
  Actors actors;
  const double side = EitherSide(random);
  double when = stage.event_s + random.Uniform(-1.5, 1);
  for (std::uint32_t left = 1 + random.Below(2); left > 0; left--) {
    Neighbour neighbour = MakeNeighbour(stage, side, 0, random);
    const double speed = random.Uniform(2.5, 14);
    Track track(-speed * when, speed);
    if (random.Below(3) == 0) {
      track.Accelerate(when, random.Uniform(0.3, 1.5));
    }
    when += (neighbour.vehicle.Length() + random.Uniform(4, 15)) / speed;
    Add(actors, stage, std::move(neighbour.vehicle), {neighbour.x, 2.5}, track);
  }
  return actors;
}

Actors MakeOncoming(const Stage& stage, Random& random) {
  Actors actors;
  const double speed = random.Uniform(3, 15);
  const double side = random.Below(5) == 0 ? 1 : -1;  // few drive on the other side of the road
  double when = stage.event_s + random.Uniform(-1, 2);
  for (std::uint32_t left = 1 + random.Below(3); left > 0; left--) {
    Vehicle vehicle = Build(AnyKind(random, kNoTram), stage, 3, random);
    const double x = LaneX(stage, side, vehicle.HalfWidth(), random);
    when += 0.5 * vehicle.Length() / speed;
    const Track track(-speed * when, speed);
    when += (0.5 * vehicle.Length() + random.Uniform(5, 25)) / speed;
    Add(actors, stage, std::move(vehicle), {x, 6, 0.5}, track);
  }
  return actors;
}

/// From the lane beside, from behind us or next to us, obliquely into ours and along it. What is ahead of us
/// then leaves, but never stood. With somebody ahead it comes in beyond.
Actors MakeDrivingIn(const Stage& stage, Random& random) {
  Actors actors;
  const double side = EitherSide(random);
  const double speed = LogUniform(random, 1.5, 13);
  const double ahead = stage.lead_present ? stage.lead_distance(0) + 5 : random.Uniform(-4, 8);
  Vehicle vehicle = Build(AnyKind(random, kNoTram), stage, std::max(3.0, ahead), random);
  const double heading = random.Uniform(0.015, 0.08);  // turns: 5 to 29 degrees
  const double from = LaneX(stage, side, vehicle.HalfWidth(), random) - stage.lead_offset;
  // Ends in our lane, after a bend that turns it straight.
  const double radius = random.Uniform(10, 40);
  const double in_bend = radius * (1 - SineOfTurns(heading + 0.25));
  const double straight = std::max(0.0, std::fabs(from) - in_bend) / SineOfTurns(heading);
  const Route route{from + stage.lead_offset, ahead, -side * heading, straight, radius, side * heading};
  const double when = stage.event_s + random.Uniform(-1.5, 1.5);
  Track track(-speed * when, speed);
  switch (random.Below(4)) {
    case 0: {
      const double deceleration = random.Uniform(1, 3);
      track.Stop(when + random.Uniform(0.5, 2.5), deceleration);
      break;
    }
    case 1:
      track.Accelerate(when, random.Uniform(0.3, 2));
      break;
    default:
      break;
  }
  Add(actors, stage, std::move(vehicle), route, track);
  return actors;
}

/// As at a road that does not come to rest.
Actors MakeStream(const Stage& stage, Random& random) {
  Actors actors;
  const double away = random.Uniform(0, 1) < 0.6 ? 0 : 0.5;
  const double side = EitherSide(random);
  const double aside = side * random.Uniform(0, 7);
  const double speed = random.Uniform(2.5, 15);
  const double gap = random.Uniform(4, 35);
  // The first is past us at the beginning, the last has not come when the scene ends.
  const double way = speed * stage.length_s;
  double at = random.Uniform(0, 25);
  for (int left = 14; left > 0 && at > -way; left--) {
    Vehicle vehicle = Build(AnyKind(random, kNoTram), stage, std::max(4.0, std::fabs(aside)), random);
    at -= 0.5 * vehicle.Length();
    const Route route{aside, away == 0 ? 0 : 6.0, away};
    const Track track(at, speed);
    at -= 0.5 * vehicle.Length() + gap * random.Uniform(0.6, 1.6);
    Add(actors, stage, std::move(vehicle), route, track);
  }
  return actors;
}

/// Forwards, then backwards around a bend to the kerb.
Actors MakeParking(const Stage& stage, Random& random) {
  Actors actors;
  const double side = EitherSide(random);
  Vehicle vehicle = Build(AnyKind(random, kShort), stage, 4, random);
  const double aside = stage.Beside(side, vehicle.HalfWidth(), random.Uniform(-1.2, 1.2));
  const double start_s = std::max(0.0, stage.event_s - random.Uniform(0, 3));
  const double speed = random.Uniform(0.6, 1.6);
  const double turn_s = start_s + random.Uniform(1.5, 4);
  const MotionOptions motion{
      0,
      {{start_s, speed, 0.9, 0.4}, {turn_s, -speed, 1.2, 0.5}, {turn_s + random.Uniform(3, 6), 0, 1, 0.4}}};
  const Route route{aside,
                    stage.lead_distance(0) + random.Uniform(2, 9),
                    random.Uniform(-0.05, 0.05),
                    random.Uniform(-2, 1),
                    random.Uniform(5, 9),
                    side * 0.1};
  Add(actors, stage, std::move(vehicle), route, Track(motion));
  return actors;
}

}  // namespace stopngo
