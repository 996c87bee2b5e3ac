// scene.h: a rendered scene: a camera that stands behind a vehicle, which waits and then drives away.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "label.h"

namespace stopngo {

/// Lengths in metres, times in seconds, angles in radians.
struct SceneOptions {
  int width = 800;  ///< pixels
  int height = 480;
  double fps = 25;
  double length_s = 12;
  double departure_s = 5;     ///< when the vehicle ahead starts; at or past length_s: never
  std::uint64_t seed = 1;     ///< everything random: textures, colours, noise, vibration
  double distance_m = 5;      ///< from the camera to the vehicle's rear
  double acceleration = 1.2;  ///< m/s², after a soft start
  double vibration = 0.4;     ///< amplitude of the picture's shake, pixels
  double noise = 2.0;         ///< standard deviation of the sensor noise, grey levels
};

/// Columns and rows of a picture of 800 × 480 pixels.
struct SceneRegion {
  int x, y, width, height;
};

/// The part of a scene's picture that is rendered, in its own pixels.
struct SceneWindow {
  int x = 0, y = 0;
  int width = 0, height = 0;  ///< 0: the whole picture
};

/// Renders the frames of a scene in any order; the same options give the same bytes on every machine.
class Scene {
 public:
  explicit Scene(const SceneOptions& options, const SceneWindow& window = {});
  ~Scene();
  [[nodiscard]] std::int64_t Frames() const;
  /// luma: width × height bytes, those of the window.
  void Render(std::int64_t frame, std::span<std::uint8_t> luma) const;
  /// Everything that is judged, in order of time, up to the scene's end.
  [[nodiscard]] std::vector<LabelSpan> Labels() const;
  /// Distance from the camera to the vehicle's rear at a time.
  [[nodiscard]] double Distance(double time_s) const;
  /// Where to look for the vehicle while it stands, at the working size of 800 × 480: the tools' default
  /// region, moved onto the vehicle's rear when it does not lie on it.
  [[nodiscard]] SceneRegion SuggestedRegion() const;

 private:
  struct Model;
  std::unique_ptr<Model> model_;
};

}  // namespace stopngo
