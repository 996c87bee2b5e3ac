// rear_looks.h: what vehicles look like from behind, as tables of shapes.
#pragma once

#include <vector>

#include "scene/paint/texture.h"
#include "scene/recipe/recipe.h"

namespace stopngo {

/// A point of a vehicle's side view: how far a height lies behind the rearmost point, in metres.
struct ProfilePoint {
  double height;
  double depth;
};

/// A shape and what its grey levels are measured from.
struct RearPart {
  Shape shape;
  bool body = false;  ///< they are added to the colour of the body
};

/// All measures for a vehicle as wide as its outline's third point tells.
struct RearLook {
  std::vector<ProfilePoint> profile;
  std::vector<OutlinePoint> outline;
  std::vector<RearPart> parts;  ///< painted in this order
};

struct RearVariant {
  VehicleKind kind;
  const RearLook& look;
  double least_half, most_half;  ///< of its width
  double least_up, most_up;      ///< factor of all heights
  bool car;                      ///< has a car's bumper and wheels
  double plate;                  ///< height of the number plate; 0: none
};

const RearVariant& VariantOf(VehicleKind kind);
/// What is on the road side of the body and painted before it, and what is the same on all cars.
const std::vector<RearPart>& PartsUnderCars();
const std::vector<RearPart>& LowerPartsOfCars();

}  // namespace stopngo
