// route.h: the way that an actor takes.
#pragma once

#include "scene/space/pose.h"

namespace stopngo {

/// Straight on, and after a while around a bend.
struct Route {
  double x = 0, z = 0;    ///< at position 0
  double heading = 0;     ///< turns: 0 away from the camera, 0.25 to the right
  double straight = 1e9;  ///< metres to the bend
  double radius = 1;      ///< of the bend
  double bend = 0;        ///< turns by which it bends, positive to the right

  [[nodiscard]] Pose At(double position) const;
};

}  // namespace stopngo
