// figure.cpp: where people, birds and litter go, drawn from random numbers.
#include "scene/actors/figure.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/common/exact_math.h"
#include "scene/actors/skeleton.h"
#include "scene/motion/route.h"
#include "scene/motion/track.h"
#include "scene/paint/sheet.h"
#include "scene/recipe/chance.h"
#include "scene/recipe/light.h"
#include "scene/space/pose.h"
#include "scene/space/vector.h"

namespace stopngo {
namespace {

constexpr double kNearestFigure_m = 1.2;

/// Somebody on foot or on two wheels.
class Figure : public Actor {
 public:
  enum class Kind { kWalker, kBicycle, kMotorcycle };

  Figure(Kind kind, const Person& person, const Route& route, Track track)
      : kind_(kind), person_(person), route_(route), track_(std::move(track)) {}

  [[nodiscard]] std::optional<double> Distance(double time_s, const Camera& camera) const override {
    const Pose pose = route_.At(track_.Position(time_s));
    const Place place = PlaceOf(camera, pose.x, pose.z);
    if (place.ahead < kNearestFigure_m || std::fabs(place.across) > 0.8 * place.ahead + 2) {
      return std::nullopt;
    }
    return place.ahead - 0.2;
  }

  void Draw(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const override {
    const double position = track_.Position(time_s);
    const Limner limner(route_.At(position), camera, light, sheet);
    if (kind_ == Kind::kWalker) {
      const double speed = (position - track_.Position(time_s - 0.2)) / 0.2;
      DrawWalker(person_, position, std::clamp(speed / 1.1, 0.0, 1.0), time_s, limner);
    } else {
      DrawRider(person_, kind_ == Kind::kMotorcycle, position, light.Night(), limner);
    }
  }

 private:
  Kind kind_;
  Person person_;
  Route route_;
  Track track_;
};

/// A bird, a leaf or a piece of paper in the wind.
class Drifter : public Actor {
 public:
  Drifter(bool bird, const Stage& stage, Random& random) : bird_(bird) {
    when_ = stage.event_s + random.Uniform(-2, 2);
    z_ = random.Uniform(2.5, 14);
    height_ = bird ? random.Uniform(1.2, 4) : random.Uniform(0.1, 1.8);
    const double side = EitherSide(random);
    speed_ = side * (bird ? random.Uniform(3, 9) : random.Uniform(0.5, 4));
    climb_ = bird ? random.Uniform(-0.6, 1) : 0;
    flutter_ = bird ? random.Uniform(3, 8) : random.Uniform(0.8, 2);
    size_ = bird ? random.Uniform(0.12, 0.3) : random.Uniform(0.03, 0.14);
    tone_ = bird ? random.Uniform(25, 90) : random.Uniform(40, 220);
    phase_ = random.Uniform(0, 1);
  }
  [[nodiscard]] std::optional<double> Distance(double time_s, const Camera& camera) const override {
    const double ahead = PlaceOf(camera, 0, z_).ahead;
    if (std::fabs(speed_ * (time_s - when_)) > z_ + 1 || ahead < kNearestFigure_m) {
      return std::nullopt;
    }
    return ahead;
  }
  void Draw(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const override {
    const double t = time_s - when_;
    const double beat = SineOfTurns(flutter_ * time_s + phase_);
    Pose pose;
    pose.x = speed_ * t + (bird_ ? 0 : 0.25 * SineOfTurns(0.7 * time_s));
    pose.z = z_;
    const double up = std::max(0.05, height_ + climb_ * t + (bird_ ? 0 : 0.2 * beat));
    const Limner limner(pose, camera, light, sheet);
    if (!bird_) {
      limner.Ball({0, up, 0}, size_ * (0.6 + 0.4 * beat), 0.6 * size_, tone_);
      return;
    }
    const Vector3 body{0, up, 0};
    limner.Limb(body, body + Vector3{size_ * 0.8, 0.02, 0}, 0.2 * size_, tone_);
    for (const double side : {-1.0, 0.6}) {
      limner.Limb(body, body + Vector3{side * size_, size_ * beat, 0}, 0.1 * size_, 1.2 * tone_);
    }
  }

 private:
  bool bird_;
  double when_, z_, height_, speed_, climb_, flutter_, size_, tone_, phase_;
};

constexpr double kFarthestWalker_m = 25;  // people any farther are a few pixels tall

/// Across the street, either way.
double AcrossHeading(Random& random) {
  const double way = 0.25 * EitherSide(random);
  return way + random.Uniform(-0.015, 0.015);
}

/// Somebody who is in front of us at about the time of the event; some stop, some set out.
void AddWalker(Actors& actors, const Stage& stage, double z, double spread, double heading, Random& random) {
  const Person person = DrawPerson(random);
  const double speed = random.Uniform(0.8, 2.2);
  const double when = stage.event_s + random.Uniform(-spread, spread);
  const double edge = stage.HalfWidthAt(z);
  const double at = random.Uniform(-0.6, 0.6) * edge;
  const Route route{at, z, heading};
  Track track(-speed * when, speed);
  const std::uint32_t habit = random.Below(6);
  if (habit == 0) {
    track.Stop(when, 2);
    track.Start(when + 2 + random.Uniform(0, 3), 1.5, speed);
  } else if (habit == 1) {
    track = Track(0, 0);
    track.Start(when, 1.5, speed);
  }
  actors.push_back(std::make_unique<Figure>(Figure::Kind::kWalker, person, route, track));
}

}  // namespace

Actors MakePedestrians(const Stage& stage, Random& random) {
  Actors actors;
  const std::uint32_t count = 1 + random.Below(3);
  if (!stage.lead_present) {
    const double z = random.Uniform(1.7, kFarthestWalker_m);
    const double heading = random.Below(2) == 0 ? AcrossHeading(random) : random.Uniform(0, 1);
    for (std::uint32_t i = 0; i < count; i++) AddWalker(actors, stage, z, 2.5, heading, random);
    return actors;
  }
  // Most cross between us and the vehicle ahead, or right beyond it.
  const double lead = stage.lead_distance(0);
  const bool near = random.Below(3) != 0 && lead > 2.6;
  const double z = near ? random.Uniform(1.7, lead - 0.6) : random.Uniform(lead + 5.5, 20 + lead);
  for (std::uint32_t i = 0; i < count; i++) {
    const double heading = AcrossHeading(random);
    const double at = near ? std::clamp(z + random.Uniform(-0.5, 0.5), 1.6, lead - 0.4) : z;
    AddWalker(actors, stage, at, 2.5, heading, random);
  }
  return actors;
}

/// Where nobody is ahead, a crowd may also walk down the street, as at a junction where all lights are red
/// for vehicles: away from us it shrinks as a vehicle does that leaves.
Actors MakeFreeCrowd(const Stage& stage, Random& random) {
  Actors actors;
  // Close by it fills the picture for as long as it passes.
  const bool close = Chance(random, 0.4);
  const double from = close ? random.Uniform(1.5, 3) : random.Uniform(2, 10);
  const double to = from + (close ? random.Uniform(1, 3) : random.Uniform(2, 14));
  const double way = random.Uniform(0, 1);
  const bool across = random.Below(2) == 0;
  const double against = random.Uniform(0, 0.5);  // the share that goes the other way
  for (std::uint32_t left = 6 + random.Below(25); left > 0; left--) {
    const double turned = random.Uniform(0, 1) < against ? 0.5 : 0;
    const double heading = across ? AcrossHeading(random) : way + turned + random.Uniform(-0.04, 0.04);
    AddWalker(actors, stage, random.Uniform(from, to), stage.length_s * 0.4, heading, random);
  }
  return actors;
}

Actors MakeCrowd(const Stage& stage, Random& random) {
  if (!stage.lead_present) return MakeFreeCrowd(stage, random);
  Actors actors;
  const double lead = stage.lead_distance(0);
  const bool near = random.Below(3) == 0 && lead > 3.5;
  const double from = near ? 2.2 : lead + 5.5;
  const double to = near ? lead - 0.5 : from + random.Uniform(2, 8);
  const std::uint32_t count = near ? 4 + random.Below(7) : 8 + random.Below(23);
  for (std::uint32_t i = 0; i < count; i++) {
    const double heading = AcrossHeading(random);
    AddWalker(actors, stage, random.Uniform(from, to), stage.length_s * 0.4, heading, random);
  }
  return actors;
}

Actors MakeBystanders(const Stage& stage, Random& random) {
  Actors actors;
  const std::uint32_t count = 1 + random.Below(5);
  for (std::uint32_t i = 0; i < count; i++) {
    const Person person = DrawPerson(random);
    const double side = EitherSide(random);
    const double x = stage.Beside(side, 0, random.Uniform(0.7, 2.5));
    const Route route{x, random.Uniform(4, 16), random.Uniform(0, 1)};
    Track track(0, 0);
    if (random.Below(2) == 0) {
      track = Track(0, random.Uniform(0.6, 1.6));
    }
    actors.push_back(std::make_unique<Figure>(Figure::Kind::kWalker, person, route, track));
  }
  return actors;
}

Actors MakeCyclists(const Stage& stage, Random& random) {
  Actors actors;
  const double lead = stage.lead_distance(0);
  const double nearest = 2.0;
  const double gap = random.Below(2) == 0 && lead > 2.8 ? lead - 0.6 : 0;  // before the vehicle ahead
  const double z = gap > 0 ? random.Uniform(nearest, gap) : random.Uniform(lead + 5.5, lead + 18);
  const Person person = DrawPerson(random);
  const bool motor = random.Below(3) == 0;
  const double speed = motor ? random.Uniform(3, 14) : random.Uniform(2, 8);
  const double when = stage.event_s + random.Uniform(-1.5, 1.5);
  Route route{0, z, 0.25 * EitherSide(random)};
  Track track(-speed * when, speed);
  if (random.Below(3) == 0) {
    // Along the street, between the lanes: past us, or towards us.
    const double side = EitherSide(random);
    const double x = stage.Beside(side, 0, random.Uniform(0.5, 1.2));
    route = {x, 3, random.Below(3) == 0 ? 0.5 : 0.0};
  }
  actors.push_back(std::make_unique<Figure>(motor ? Figure::Kind::kMotorcycle : Figure::Kind::kBicycle,
                                            person, route, track));
  return actors;
}

Actors MakeBirds(const Stage& stage, Random& random) {
  Actors actors;
  const bool birds = random.Below(2) == 0;
  const std::uint32_t count = 1 + random.Below(birds ? 6 : 10);
  for (std::uint32_t i = 0; i < count; i++) {
    actors.push_back(std::make_unique<Drifter>(birds, stage, random));
  }
  return actors;
}

}  // namespace stopngo
