// camera.cpp: the camera that a recipe describes.
#include "scene/space/camera.h"

namespace stopngo {

Camera WaitingCamera(const SceneOptions& options) {
  Camera camera{.height_m = options.camera.height_m,
                .focal = options.camera.focal * options.width,
                .centre_x = 0.5 * options.width,
                .horizon = options.camera.horizon * options.height};
  Turn(camera, options.camera.yaw);
  return camera;
}

}  // namespace stopngo
