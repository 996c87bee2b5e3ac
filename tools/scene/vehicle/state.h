// state.h: where a vehicle is and what of it is lit, at one moment.
#pragma once

#include "scene/space/pose.h"

namespace stopngo {

struct VehicleState {
  Pose pose;
  double travelled = 0;                             ///< metres, which turn the wheels
  double lift = 0;                                  ///< of its body on its springs, metres
  double boot = 0;                                  ///< 0 shut … 1 open
  double brake = 0, tail = 0, left = 0, right = 0;  ///< how brightly lamps are lit, 0 … 1
};

}  // namespace stopngo
