// scene_backdrop.h: the standing part of a scene, painted once and laid under every frame.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "scene_camera.h"
#include "scene_motion.h"
#include "scene_world.h"

namespace stopngo {

/// The world as the camera sees it, kept at twice the picture's resolution with a margin all around,
/// so that it can be laid under a frame at any fraction of a pixel without flicker.
class Backdrop {
 public:
  Backdrop(const World& world, const Camera& camera, int width, int height, int margin);
  /// One row of the picture, displaced by no more than the margin.
  void Row(int row, Shake::Offset offset, std::span<float> light) const;

 private:
  int margin_;
  std::size_t stride_;                        ///< samples in a row of one plane
  std::array<std::vector<float>, 2> planes_;  ///< even and odd columns: a row is then summed without gaps
};

}  // namespace stopngo
