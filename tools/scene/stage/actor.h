// actor.h: what everything is that moves in a scene besides the vehicle ahead.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "scene/paint/sheet.h"
#include "scene/recipe/light.h"
#include "scene/space/camera.h"

namespace stopngo {

/// Something in the street. It is drawn in metres, x to the right and z ahead of the place of the waiting
/// camera, onto a sheet of the size of the window that the camera's centre and horizon are meant for.
class Actor {
 public:
  virtual ~Actor() = default;
  /// How far ahead of a camera it is (the nearest part of it), for drawing from back to front; nothing while
  /// it is not in the scene.
  [[nodiscard]] virtual std::optional<double> Distance(double time_s, const Camera& camera) const = 0;
  virtual void Draw(double time_s, const Camera& camera, const Light& light, Sheet& sheet) const = 0;
  /// Whether Draw paints the same as at the beginning, so that a picture of it may be kept.
  [[nodiscard]] virtual bool Rests(double /*time_s*/) const { return false; }
  /// What of it shines, over what Draw painted; it may change while the rest stays.
  virtual void DrawLamps(double /*time_s*/, const Camera& /*camera*/, const Light& /*light*/,
                         Sheet& /*sheet*/) const {}
};

/// Something on the windscreen or on the picture as a whole: the camera's shake does not move it.
class ScreenEffect {
 public:
  virtual ~ScreenEffect() = default;
  virtual void Draw(double time_s, Sheet& sheet) const = 0;
};

/// What actors have to know of their scene.
struct Stage {
  int width = 800;  ///< of the whole picture, pixels
  int height = 480;
  int window_x = 0;  ///< of the part that is rendered
  int window_y = 0;
  double focal = 720;  ///< pixels
  double length_s = 12;
  double event_s = 5;        ///< a moment that passing things should be in view at, roughly
  bool lead_present = true;  ///< if not, what follows is of the place that is left free for one
  double lead_half_width = 0.9;
  double lead_height = 1.45;
  double lead_offset = 0;  ///< of its middle, to the right
  std::function<double(double time_s)> lead_distance = [](double) { return 5.0; };
  double night = 0;  ///< 0 day … 1 night: beams of light are seen at night only

  /// Metres from the middle of the picture to its edges, at a distance.
  [[nodiscard]] double HalfWidthAt(double z) const { return 0.5 * width / focal * z; }
  /// The middle of a thing beside the vehicle ahead, with a gap between them. side: -1 left, 1 right.
  [[nodiscard]] double Beside(double side, double half_width, double gap) const {
    return lead_offset + side * (lead_half_width + half_width + gap);
  }
};

using Actors = std::vector<std::unique_ptr<Actor>>;

}  // namespace stopngo
