// vehicle_looks.h: what vehicles look like from behind, as tables of shapes.
#pragma once

#include <vector>

#include "scene/lane/vehicle.h"

namespace stopngo {

/// A shape and what its grey levels are measured from.
struct VehiclePart {
  Shape shape;
  bool body = false;  ///< they are added to the colour of the body
};

/// All measures for a vehicle as wide as its outline's third point tells.
struct VehicleLook {
  std::vector<ProfilePoint> profile;
  std::vector<OutlinePoint> outline;
  std::vector<VehiclePart> parts;  ///< painted in this order
};

struct VehicleVariant {
  VehicleKind kind;
  const VehicleLook& look;
  double least_half, most_half;  ///< of its width
  double least_up, most_up;      ///< factor of all heights
  double length;
  bool car;      ///< has a car's bumper and wheels
  double plate;  ///< height of the number plate; 0: none
};

const VehicleVariant& VariantOf(VehicleKind kind);
/// What is on the road side of the body and painted before it, and what is the same on all cars.
const std::vector<VehiclePart>& PartsUnderCars();
const std::vector<VehiclePart>& LowerPartsOfCars();

}  // namespace stopngo
