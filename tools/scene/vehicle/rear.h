// rear.h: a vehicle as it is from behind: a painted texture, the profile that it is bent along, and lamps.
#pragma once

#include <cstdint>
#include <vector>

#include "scene/paint/texture.h"
#include "scene/recipe/recipe.h"
#include "scene/vehicle/rear_looks.h"

namespace stopngo {

struct RearLamp {
  enum class Role { kTail, kBrake, kLeft, kRight } role;
  double centre;  ///< metres to the right of the vehicle's middle
  double height;  ///< of its middle
  double half_width, half_height;
  double power;  ///< grey levels
};

/// One texture, bent along the profile: each height has a depth of its own, so that a
/// slanted window closes up behind the bumper as the vehicle drives away.
struct Rear {
  VehicleKind kind;
  double half_width;
  double up;                          ///< by how much it is taller than the table's
  double body;                        ///< grey level of its paint
  std::vector<ProfilePoint> profile;  ///< from the road upwards
  Texture texture;
  std::vector<RearLamp> lamps;
};

/// Draws what the options leave open, number plate and dirt from the seed. texels_per_metre: of the texture,
/// which has to be somewhat finer than the pixels at the nearest distance; most_texels bounds it.
Rear PaintRear(const VehicleOptions& options, double texels_per_metre, double most_texels,
               std::uint64_t seed);

}  // namespace stopngo
