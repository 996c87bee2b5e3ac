// scene_vehicle.h: the vehicle ahead, seen from behind.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "scene_camera.h"
#include "scene_motion.h"
#include "scene_texture.h"

namespace stopngo {

/// A point of a vehicle's side view: how far a height lies behind the rearmost point, in metres.
struct ProfilePoint {
  double height;
  double depth;
};

/// Its rear is one texture, bent along the profile: each height has a depth of its own, so that a
/// slanted window closes up behind the bumper as the vehicle drives away. The flanks are never seen
/// from straight behind.
struct Vehicle {
  double half_width;
  double offset;                      ///< of its middle to the right of the camera
  std::vector<ProfilePoint> profile;  ///< from the road upwards
  Texture rear;
};

/// Draws kind, size, colour, number plate and dirt from the seed. texels_per_metre: of the texture, which
/// has to be somewhat finer than the pixels at the nearest distance.
Vehicle BuildVehicle(double texels_per_metre, std::uint64_t seed);

/// A vehicle at one moment, ready to be drawn row by row.
class VehicleView {
 public:
  /// brakes: 0 … 1, how brightly the brake lights are lit.
  VehicleView(const Vehicle& vehicle, const Camera& camera, double distance, Shake::Offset shake,
              double brakes);
  void DrawRow(int row, std::span<float> light);
  /// The rows that it covers: its roof and the road beneath its wheels.
  [[nodiscard]] double Top() const { return knots_.back().row; }
  [[nodiscard]] double Bottom() const { return knots_.front().row; }
  /// The columns at its bumper.
  [[nodiscard]] double Left() const { return centre_ - vehicle_.half_width * camera_.focal / distance_; }
  [[nodiscard]] double Right() const { return centre_ + vehicle_.half_width * camera_.focal / distance_; }

 private:
  /// A profile point in the picture.
  struct Knot {
    double row;
    double height;
    double distance;
  };
  [[nodiscard]] Knot At(double row) const;
  void DrawShadow(int row, std::span<float> light) const;

  const Vehicle& vehicle_;
  Camera camera_;
  double distance_;
  double brakes_;
  double centre_;  ///< column of the middle at the rearmost point
  std::vector<Knot> knots_;
  std::vector<Texel> sums_;
};

}  // namespace stopngo
