// projection.h: where a point of a scene's space is seen.
#pragma once

#include <optional>

#include "scene/space/camera.h"
#include "scene/space/vector.h"

namespace stopngo {

/// Where a point is seen.
struct Spot {
  double column;
  double row;
  double scale;  ///< pixels a metre at its distance
};

/// Nearer than this nothing is drawn.
constexpr double kNearest_m = 0.3;

inline Vector3 LensOf(const Camera& camera) { return {camera.x_m, camera.height_m, camera.z_m}; }

/// A direction as seen from the lens, with z along its axis.
Vector3 Turned(const Camera& camera, Vector3 direction);

/// A point as seen from there.
Vector3 ToEye(const Camera& camera, Vector3 point);

/// Where a point as seen from the lens, ahead of it, lies in the picture.
Spot ToPicture(const Camera& camera, Vector3 eye);

/// Nothing for points behind the camera or nearly so.
std::optional<Spot> Project(const Camera& camera, Vector3 point);

}  // namespace stopngo
