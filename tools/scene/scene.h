// scene.h: a rendered scene: what a camera behind a windscreen sees of a street and of the vehicle ahead.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/label.h"
#include "scene/recipe/recipe.h"
#include "scene/space/window.h"

namespace stopngo {

struct SceneModel;

/// The same options give the same bytes on every machine.
class Scene {
 public:
  explicit Scene(const SceneOptions& options, const SceneWindow& window = {});
  ~Scene();
  [[nodiscard]] std::int64_t Frames() const;
  /// luma: width × height bytes, those of the window. With compression a frame depends on those that were
  /// rendered before it, which may be every frame or every n-th, in order; without it the order does not
  /// matter. One thread at a time may render.
  void Render(std::int64_t frame, std::span<std::uint8_t> luma);
  /// Everything that is judged, in order of time, up to the scene's end.
  [[nodiscard]] std::vector<LabelSpan> Labels() const;

 private:
  std::unique_ptr<SceneModel> model_;
};

}  // namespace stopngo
