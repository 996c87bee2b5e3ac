// scene_panel.h: flat textured things anywhere in a scene's space, and where points of it are seen.
#pragma once

#include <optional>

#include "scene_camera.h"
#include "scene_sheet.h"
#include "scene_texture.h"

namespace stopngo {

/// x to the right of the waiting camera, height above the road, z ahead, in metres.
struct Vector3 {
  double x;
  double height;
  double z;
};

inline Vector3 operator+(Vector3 a, Vector3 b) { return {a.x + b.x, a.height + b.height, a.z + b.z}; }
inline Vector3 operator-(Vector3 a, Vector3 b) { return {a.x - b.x, a.height - b.height, a.z - b.z}; }
inline Vector3 operator*(double s, Vector3 a) { return {s * a.x, s * a.height, s * a.z}; }

/// Where a point is seen.
struct Spot {
  double column;
  double row;
  double scale;  ///< pixels a metre at its distance
};

/// Nearer than this nothing is drawn.
constexpr double kNearest_m = 0.3;

/// Nothing for points behind the camera or nearly so.
std::optional<Spot> Project(const Camera& camera, Vector3 point);

/// A texture on a parallelogram. It is seen from both sides.
struct Panel {
  const Texture& texture;
  Vector3 origin;  ///< of the middle of the texture's lower edge
  Vector3 across;  ///< one metre to the right on the texture
  Vector3 up;      ///< one metre upwards on the texture
};

/// How a texture's sums become light.
struct Glaze {
  double gain = 1;     ///< of the surface
  double lamp = 0;     ///< of its lamps
  double opacity = 1;  ///< of all
};

void DrawPanel(const Panel& panel, const Camera& camera, const Glaze& glaze, Sheet& sheet);

}  // namespace stopngo
