// body.h: what of a vehicle is flat faces, all but its rear: its measures, the faces and their textures.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "base/random.h"
#include "scene/paint/texture.h"
#include "scene/space/vector.h"
#include "scene/vehicle/rear.h"

namespace stopngo {

/// A flat side. Vectors as in Vector3, but from the vehicle's own middle.
struct Face {
  std::size_t texture;
  Vector3 origin;
  Vector3 across;
  Vector3 up;
  Vector3 outward;
};

/// Measures of a kind; lengths from its rear or front end are along the vehicle.
struct BodyShape {
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

/// Of a kind, as wide and as tall as its rear.
BodyShape ShapeOf(const Rear& rear);

struct BodyParts {
  std::vector<Texture> textures;
  std::vector<Face> body, cabin;  ///< the cabin is drawn after the body
  std::size_t wheel = 0;          ///< texture
  std::size_t shadow = 0;
};

/// texels_per_metre: wanted; long vehicles get fewer.
BodyParts PaintBody(const Rear& rear, double texels_per_metre, Random& random);

}  // namespace stopngo
