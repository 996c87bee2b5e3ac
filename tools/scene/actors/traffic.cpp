// traffic.cpp: where the traffic's vehicles drive, drawn from random numbers.
#include "scene/actors/traffic.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "scene/actors/box_vehicle.h"
#include "scene/actors/figure.h"
#include "scene/motion/route.h"
#include "scene/motion/track.h"
#include "scene/paint/sheet.h"
#include "scene/recipe/chance.h"
#include "scene/recipe/light.h"
#include "scene/space/pose.h"
#include "scene/space/projection.h"

namespace stopngo {
namespace {

constexpr double kFarthest_m = 150;
constexpr double kViewSlope = 0.75;  // metres to the side per metre ahead that no lens here sees beyond
constexpr double kTexelsPerPixel = 1.2;

class TrafficVehicle : public Actor {
 public:
  TrafficVehicle(BoxVehicle vehicle, Route route, Track track)
      : vehicle_(std::move(vehicle)), route_(route), track_(std::move(track)) {}

  [[nodiscard]] std::optional<double> Distance(double time_s) const override {
    const Pose pose = route_.At(track_.Position(time_s));
    const auto [nearest, farthest] = vehicle_.Reach(pose);
    const double aside = std::fabs(pose.x) - vehicle_.Length();
    if (farthest < kNearest_m || nearest > kFarthest_m || aside > kViewSlope * farthest) {
      return std::nullopt;
    }
    return nearest;
  }

  void Draw(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const override {
    const double position = track_.Position(time_s);
    const double brakes = track_.BrakingOrStanding(time_s) ? 1 : 0;
    vehicle_.Draw(route_.At(position), position, brakes, camera, light, sheet);
  }

 private:
  BoxVehicle vehicle_;
  Route route_;
  Track track_;
};

BoxKind AnyKind(Random& random, std::uint32_t of) {
  // Cars are the most, and come first: of limits how long a vehicle may be.
  constexpr std::array<BoxKind, 12> kKinds{BoxKind::kHatchback, BoxKind::kSaloon, BoxKind::kEstate,
                                           BoxKind::kHatchback, BoxKind::kVan,    BoxKind::kSaloon,
                                           BoxKind::kEstate,    BoxKind::kVan,    BoxKind::kLorry,
                                           BoxKind::kBus,       BoxKind::kTram,   BoxKind::kLorry};
  return kKinds[random.Below(of)];
}

constexpr std::uint32_t kShort = 8;
constexpr std::uint32_t kNoTram = 10;
constexpr std::uint32_t kAll = 12;

BoxVehicle Build(BoxKind kind, const Stage& stage, double nearest_m, Random& random) {
  return {kind, kTexelsPerPixel * stage.focal / std::max(nearest_m, 1.0), random};
}

void Add(Actors& actors, BoxVehicle vehicle, const Route& route, const Track& track) {
  actors.push_back(std::make_unique<TrafficVehicle>(std::move(vehicle), route, track));
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
  BoxVehicle vehicle;
  double x;
  double z;  ///< of its middle, where it stands or comes to stand
};

Neighbour MakeNeighbour(const Stage& stage, double side, double behind_lead, Random& random) {
  BoxVehicle vehicle = Build(AnyKind(random, kNoTram), stage, 2.5, random);
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
    BoxVehicle vehicle = Build(AnyKind(random, kAll), stage, z, random);
    const Route route = Across(z, EitherSide(random));
    Add(actors, std::move(vehicle), route, CrossingTrack(stage, z, 18, random));
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
  const BoxKind kind = AnyKind(random, lead - z > 1.8 ? kNoTram : kShort);
  BoxVehicle vehicle = Build(kind, stage, z - 0.9, random);
  const Route route = Across(z, EitherSide(random));
  Add(actors, std::move(vehicle), route, CrossingTrack(stage, z, 8, random));
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
    BoxVehicle vehicle = Build(AnyKind(random, kNoTram), stage, z, random);
    at -= 0.5 * vehicle.Length();
    const Track track(at, speed);
    at -= 0.5 * vehicle.Length() + random.Uniform(2, 12);
    Add(actors, std::move(vehicle), route, track);
  }
  return actors;
}

Actors MakeTurning(const Stage& stage, Random& random) {
  Actors actors;
  const double radius = random.Uniform(4.5, 8);
  const double corner = stage.lead_distance(0) + 7 + random.Uniform(0, 8) + radius;
  const double speed = random.Uniform(3, 7);
  BoxVehicle vehicle = Build(AnyKind(random, kNoTram), stage, corner - radius, random);
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
  Add(actors, std::move(vehicle), route, Track(20 - speed * when, speed));
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
      Add(actors, std::move(neighbour.vehicle), {neighbour.x, neighbour.z}, Track(0, 0));
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
  Add(actors, std::move(neighbour.vehicle), {neighbour.x, neighbour.z}, track);
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
  Add(actors, std::move(neighbour.vehicle), {neighbour.x, neighbour.z}, track);
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
    Add(actors, std::move(neighbour.vehicle), {neighbour.x, 2.5}, track);
  }
  return actors;
}

Actors MakeOncoming(const Stage& stage, Random& random) {
  Actors actors;
  const double speed = random.Uniform(3, 15);
  const double side = random.Below(5) == 0 ? 1 : -1;  // few drive on the other side of the road
  double when = stage.event_s + random.Uniform(-1, 2);
  for (std::uint32_t left = 1 + random.Below(3); left > 0; left--) {
    BoxVehicle vehicle = Build(AnyKind(random, kNoTram), stage, 3, random);
    const double x = LaneX(stage, side, vehicle.HalfWidth(), random);
    when += 0.5 * vehicle.Length() / speed;
    const Track track(-speed * when, speed);
    when += (0.5 * vehicle.Length() + random.Uniform(5, 25)) / speed;
    Add(actors, std::move(vehicle), {x, 6, 0.5}, track);
  }
  return actors;
}

}  // namespace stopngo
