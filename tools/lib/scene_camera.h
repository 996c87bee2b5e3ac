// scene_camera.h: the pinhole camera of a scene.
#pragma once

namespace stopngo {

/// x to the right, height above the road and z ahead, in metres from the point below the lens.
struct Camera {
  double height_m = 1.3;  ///< behind a car's windscreen
  double focal = 0;       ///< pixels
  double centre_x = 0;    ///< column that looks straight ahead
  double horizon = 0;     ///< row at eye level
};

/// 0.9 widths of focal length are 58 degrees of view, as dashboard cameras have; the rear of a car
/// 1.8 m wide at 5 m then covers 259 of 800 pixels. The lens looks up by a hundredth of the picture.
inline Camera MakeCamera(int width, int height) {
  return {.focal = 0.9 * width, .centre_x = 0.5 * width, .horizon = 0.52 * height};
}

}  // namespace stopngo
