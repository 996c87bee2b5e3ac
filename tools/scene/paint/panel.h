// panel.h: flat textured things anywhere in a scene's space.
#pragma once

#include "scene/paint/sheet.h"
#include "scene/paint/texture.h"
#include "scene/space/camera.h"
#include "scene/space/vector.h"

namespace stopngo {

/// A texture on a parallelogram. It is seen from both sides.
struct Panel {
  const Texture& texture;
  Vector3 origin;  ///< of the middle of the texture's lower edge
  Vector3 across;  ///< one metre to the right on the texture
  Vector3 up;      ///< one metre upwards on the texture
};

/// How a texture's sums become light.
struct Glaze {
  double gain = 1;  ///< of the surface
  double lamp = 0;  ///< of its lamps
};

void DrawPanel(const Panel& panel, const Camera& camera, const Glaze& glaze, Sheet& sheet);

}  // namespace stopngo
