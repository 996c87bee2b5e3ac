// camera.h: the pinhole camera of a scene: its lens, where it stands and where it looks.
#pragma once

#include <cmath>

#include "host/common/exact_math.h"
#include "scene/recipe/recipe.h"
#include "scene/space/offset.h"

namespace stopngo {

/// Coordinates: x to the right, height above the road and z ahead, in metres from the point below the
/// lens of the camera while it waits at the beginning of the scene.
struct Camera {
  double height_m = 1.3;  ///< behind a car's windscreen
  double focal = 0;       ///< pixels
  double centre_x = 0;    ///< column that looks along the lens's axis
  double horizon = 0;     ///< row at eye level
  double x_m = 0;         ///< where our own vehicle has moved to
  double z_m = 0;
  double cosine = 1;  ///< of the angle by which it has turned, to the right
  double sine = 0;
};

/// Where a point of the ground lies for a camera: metres along its axis, and across it.
struct Place {
  double across;
  double ahead;
};

/// Metres from the camera, along the street's axes, as metres along its own.
inline Place Turned(const Camera& camera, double x, double z) {
  return {camera.cosine * x - camera.sine * z, camera.cosine * z + camera.sine * x};
}

inline Place PlaceOf(const Camera& camera, double x, double z) {
  return Turned(camera, x - camera.x_m, z - camera.z_m);
}

/// Turns it further to the right by an angle in turns, which is a small part of one.
inline void Turn(Camera& camera, double turns) {
  const double sine = SineOfTurns(turns);
  const double cosine = std::sqrt(1 - sine * sine);
  const double before = camera.sine;
  camera.sine = before * cosine + camera.cosine * sine;
  camera.cosine = camera.cosine * cosine - before * sine;
}

/// Whose picture is displaced.
inline Camera Displaced(Camera camera, Offset offset) {
  camera.centre_x += offset.x;
  camera.horizon += offset.y;
  return camera;
}

/// Of the whole picture while our own vehicle waits at the beginning.
Camera WaitingCamera(const SceneOptions& options);

}  // namespace stopngo
