// pose.h: where a thing stands on the road, and where it heads.
#pragma once

#include "scene/space/vector.h"

namespace stopngo {

/// Where a thing stands on the road, and where it heads: cosine 1 is away from the camera, sine 1 to the
/// right.
struct Pose {
  double x = 0;
  double z = 0;
  double cosine = 1;
  double sine = 0;
};

/// Metres from its middle to the right, above the road and forward.
inline Vector3 InStreet(const Pose& pose, Vector3 local) {
  return {pose.x + pose.cosine * local.x + pose.sine * local.z, local.height,
          pose.z - pose.sine * local.x + pose.cosine * local.z};
}

}  // namespace stopngo
