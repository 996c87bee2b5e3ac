// box.h: vehicles in traffic, built from flat faces and seen from any side.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "base/random.h"
#include "scene/actors/actor.h"
#include "scene/paint/panel.h"
#include "scene/paint/sheet.h"
#include "scene/paint/texture.h"
#include "scene/recipe/light.h"
#include "scene/space/camera.h"
#include "scene/space/pose.h"
#include "scene/space/vector.h"

namespace stopngo {

enum class BoxKind { kHatchback, kSaloon, kEstate, kVan, kLorry, kBus, kTram };

/// A flat side. Vectors as in Vector3, but from the vehicle's own middle.
struct Face {
  std::size_t texture;
  Vector3 origin;
  Vector3 across;
  Vector3 up;
  Vector3 outward;
};

/// Measures of a kind; lengths from its rear or front end are along the vehicle.
struct BoxShape {
  double length;
  double half_width;
  double low;   ///< lower edge of the body
  double belt;  ///< its upper edge, on which the cabin stands; of boxy vehicles the roof
  double roof;
  double cabin_rear;   ///< from the rear end to the cabin's lower edge
  double cabin_front;  ///< from the front end
  double rear_run;     ///< by how much the rear window leans forward
  double front_run;    ///< and the windscreen backward
  double wheel_radius;
  std::array<double, 4> wheels;  ///< from the rear end; unused: 0
  double dark_from, dark_to;     ///< heights of the windows along boxy flanks
};

const BoxShape& ShapeOf(BoxKind kind);

struct BoxParts {
  std::vector<Texture> textures;
  std::vector<Face> body, cabin;  ///< the cabin is drawn after the body
  std::size_t wheel = 0;          ///< texture
  std::size_t shadow = 0;
};

/// texels_per_metre: wanted; long vehicles get fewer.
BoxParts PaintBox(BoxKind kind, double texels_per_metre, Random& random);

class BoxVehicle {
 public:
  BoxVehicle(BoxKind kind, double texels_per_metre, Random& random);
  [[nodiscard]] double Length() const { return shape_.length; }
  [[nodiscard]] double HalfWidth() const { return shape_.half_width; }
  [[nodiscard]] double Height() const { return shape_.roof; }
  /// Smallest and largest distance ahead of the camera's place of any part.
  [[nodiscard]] std::array<double, 2> Reach(const Pose& pose) const;
  /// travelled: metres, which turn the wheels; brakes: how brightly their lamps are lit, 0 … 1.
  void Draw(const Pose& pose, double travelled, double brakes, const Camera& camera, const Light& light,
            Sheet& sheet) const;

 private:
  struct Look;
  void DrawFaces(const std::vector<Face>& faces, const Look& look) const;
  void DrawWheels(const Look& look, double travelled) const;
  void DrawGlows(const Look& look, double brakes) const;

  const BoxShape& shape_;
  BoxParts parts_;
};

}  // namespace stopngo
