// box_vehicle.h: vehicles in traffic, built from flat faces and seen from any side.
#pragma once

#include <array>
#include <vector>

#include "base/random.h"
#include "scene/actors/box_paint.h"
#include "scene/paint/sheet.h"
#include "scene/recipe/light.h"
#include "scene/space/camera.h"
#include "scene/space/pose.h"

namespace stopngo {

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
