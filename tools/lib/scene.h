// scene.h: a rendered scene: what a camera behind a windscreen sees of a street and of the vehicle ahead.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "label.h"
#include "scene_options.h"

namespace stopngo {

/// Columns and rows of a picture of 800 × 480 pixels.
struct SceneRegion {
  int x, y, width, height;
};

/// The part of a scene's picture that is rendered, in its own pixels.
struct SceneWindow {
  int x = 0, y = 0;
  int width = 0, height = 0;  ///< 0: the whole picture
};

/// Where to look for the vehicle while it stands, at the working size of 800 × 480: unless the options
/// aim it, the tools' default region, moved onto the vehicle's rear when it does not lie on it.
SceneRegion SuggestedRegion(const SceneOptions& options);

/// The same options give the same bytes on every machine.
class Scene {
 public:
  explicit Scene(const SceneOptions& options, const SceneWindow& window = {});
  ~Scene();
  [[nodiscard]] std::int64_t Frames() const;
  /// luma: width × height bytes, those of the window. With compression a frame depends on those that were
  /// rendered before it, which may be every frame or every n-th, in order; without it the order does not
  /// matter. One thread at a time may render.
  void Render(std::int64_t frame, std::span<std::uint8_t> luma) const;
  /// Everything that is judged, in order of time, up to the scene's end.
  [[nodiscard]] std::vector<LabelSpan> Labels() const;
  /// Distance from where the camera is at the beginning to the vehicle's rear at a time.
  [[nodiscard]] double Distance(double time_s) const;
  [[nodiscard]] SceneRegion SuggestedRegion() const;

 private:
  struct Model;
  std::unique_ptr<Model> model_;
};

}  // namespace stopngo
