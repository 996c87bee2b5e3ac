// projection.cpp: where a point of a scene's space is seen.
#include "scene/space/projection.h"

namespace stopngo {

Vector3 Turned(const Camera& camera, Vector3 direction) {
  const auto [across, ahead] = Turned(camera, direction.x, direction.z);
  return {across, direction.height, ahead};
}

Vector3 ToEye(const Camera& camera, Vector3 point) { return Turned(camera, point - LensOf(camera)); }

Spot ToPicture(const Camera& camera, Vector3 eye) {
  const double scale = camera.focal / eye.z;
  return {camera.centre_x + eye.x * scale, camera.horizon - eye.height * scale, scale};
}

std::optional<Spot> Project(const Camera& camera, Vector3 point) {
  const Vector3 eye = ToEye(camera, point);
  if (eye.z < kNearest_m) {
    return std::nullopt;
  }
  return ToPicture(camera, eye);
}

}  // namespace stopngo
