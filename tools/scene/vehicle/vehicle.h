// vehicle.h: a vehicle, seen from any side: a rear bent along its profile, everything else flat faces.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "scene/paint/sheet.h"
#include "scene/recipe/light.h"
#include "scene/recipe/recipe.h"
#include "scene/space/camera.h"
#include "scene/space/pose.h"
#include "scene/vehicle/body.h"
#include "scene/vehicle/rear.h"
#include "scene/vehicle/state.h"

namespace stopngo {

/// How finely a vehicle's textures are painted: somewhat finer than the pixels at its nearest distance.
struct Texels {
  double per_metre;
  double most = 60000;  ///< of a rear
};

class Vehicle {
 public:
  /// Takes kind, tone and dirt from the options, and what they leave open from the seed.
  Vehicle(const VehicleOptions& options, const Texels& texels, std::uint64_t seed);
  [[nodiscard]] double Length() const { return shape_.length; }
  [[nodiscard]] double HalfWidth() const { return shape_.half_width; }
  [[nodiscard]] double Height() const { return rear_.profile.back().height; }
  [[nodiscard]] const Rear& Back() const { return rear_; }
  /// Smallest and largest distance of any part ahead of a camera.
  [[nodiscard]] std::array<double, 2> Reach(const Pose& pose, const Camera& camera) const;
  /// The state as seen from its rear: the pose there is that of the rear's middle.
  [[nodiscard]] VehicleState AtRear(VehicleState state) const;
  /// All but lamps that are lit.
  void DrawBody(const VehicleState& state, const Camera& camera, const Light& light, Sheet& sheet) const;
  void DrawLamps(const VehicleState& state, const Camera& camera, const Light& light, Sheet& sheet) const;

 private:
  struct Look;
  void DrawFaces(const std::vector<Face>& faces, const Look& look) const;
  void DrawWheels(const Look& look, double travelled) const;

  Rear rear_;
  BodyShape shape_;
  BodyParts parts_;
};

}  // namespace stopngo
