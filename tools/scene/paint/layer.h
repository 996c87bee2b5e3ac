// layer.h: what stands still in a scene, painted once and laid under every frame.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "scene/space/camera.h"
#include "scene/space/offset.h"

namespace stopngo {

/// A picture kept at twice the resolution with a margin all around, so that it can be laid under a frame
/// at any fraction of a pixel without flicker.
class Layer {
 public:
  /// Paints a row of the picture as that camera sees it.
  using Paint = std::function<void(const Camera&, int row, std::span<float> light)>;

  /// margin: pixels by which it may be displaced.
  Layer(const Camera& camera, int width, int height, int margin, const Paint& paint);
  /// One row of the picture, displaced by no more than the margin.
  void Row(int row, Offset offset, std::span<float> light) const;

 private:
  int margin_;
  std::size_t stride_;                        ///< samples in a row of one plane
  std::array<std::vector<float>, 2> planes_;  ///< even and odd columns: a row is then summed without gaps
};

/// Something that covers a part of what is behind it.
class Cutout {
 public:
  /// paint lays the thing over what is there already, as light = light × (1 - cover) + tone.
  Cutout(const Camera& camera, int width, int height, int margin, const Layer::Paint& paint);
  void DrawRow(int row, Offset offset, std::span<float> light) const;

 private:
  Layer over_black_;
  Layer over_white_;
};

}  // namespace stopngo
