// windscreen.h: what lies between the lens and the street: dirt, reflections, our own bonnet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "scene/recipe/light.h"
#include "scene/recipe/recipe.h"
#include "scene/space/window.h"

namespace stopngo {

/// The same for every frame, for it moves with the camera.
class Windscreen {
 public:
  Windscreen(const WindscreenOptions& options, const Light& light, const PicturePart& frame,
             std::uint64_t seed);
  void Draw(std::span<float> light) const;

 private:
  void Paint(const WindscreenOptions& options, std::size_t pixel, float x, float y);

  std::uint32_t seed_ = 0;
  float ambient_;
  float bonnet_tone_ = 0;
  std::vector<float> through_;  ///< share of the light that passes; none: all of it does everywhere
  std::vector<float> added_;
};

}  // namespace stopngo
