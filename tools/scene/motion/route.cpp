// route.cpp: a way straight on and around a bend.
#include "scene/motion/route.h"

#include <algorithm>
#include <cmath>

#include "host/common/exact_math.h"

namespace stopngo {
namespace {

constexpr double kTurn = 6.28318530717959;

}  // namespace

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
