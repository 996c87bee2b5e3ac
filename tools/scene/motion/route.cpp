// route.cpp: positions over time, and bends.
#include "scene/motion/route.h"

#include <algorithm>
#include <cmath>

#include "base/exact_math.h"

namespace stopngo {
namespace {

constexpr double kTurn = 6.28318530717959;
constexpr double kBuildUp_s = 0.5;
constexpr int kSteps = 5;  // in which an acceleration builds up

}  // namespace

const Pace::Leg& Pace::At(double time_s) const {
  const auto next =
      std::find_if(legs_.begin() + 1, legs_.end(), [time_s](const Leg& leg) { return time_s < leg.begin_s; });
  return *(next - 1);
}

double Pace::Position(double time_s) const {
  const Leg& leg = At(time_s);
  const double t = time_s - leg.begin_s;
  return leg.position + t * (leg.speed + 0.5 * t * leg.acceleration);
}

bool Pace::BrakingOrStanding(double time_s) const {
  const Leg& leg = At(time_s);
  return leg.acceleration < 0 || (leg.speed == 0 && leg.acceleration == 0);
}

void Pace::Change(double start_s, double acceleration) {
  const Leg& leg = legs_.back();
  const double t = start_s - leg.begin_s;
  legs_.push_back({start_s, Position(start_s), leg.speed + t * leg.acceleration, acceleration});
}

void Pace::Start(double start_s, double acceleration, double speed) {
  for (int step = 1; step <= kSteps; step++) {
    Change(start_s + (step - 1) * kBuildUp_s / kSteps, acceleration * step / kSteps);
  }
  const Leg& full = legs_.back();
  Change(full.begin_s + std::max(0.0, speed - full.speed) / acceleration, 0);
}

void Pace::Stop(double start_s, double deceleration) {
  Change(start_s, -deceleration);
  const Leg& leg = legs_.back();
  Change(start_s + leg.speed / deceleration, 0);
  legs_.back().speed = 0;  // exactly, where a rounding error would let it creep
}

Pose Route::At(double position) const {
  const double sine = SineOfTurns(heading);
  const double cosine = SineOfTurns(heading + 0.25);
  const double length = std::fabs(bend) * kTurn * radius;
  const double in_bend = std::clamp(position - straight, 0.0, length);
  const double turned = in_bend / (kTurn * radius);
  const double side = bend < 0 ? -1 : 1;
  const double beyond = std::max(0.0, position - straight - length);
  const double bend_sine = SineOfTurns(turned);
  const double bend_cosine = SineOfTurns(turned + 0.25);
  const double ahead = std::min(position, straight) + radius * bend_sine + beyond * bend_cosine;
  const double right = side * (radius * (1 - bend_cosine) + beyond * bend_sine);
  return {x + sine * ahead + cosine * right, z + cosine * ahead - sine * right,
          cosine * bend_cosine - side * sine * bend_sine, sine * bend_cosine + side * cosine * bend_sine};
}

}  // namespace stopngo
