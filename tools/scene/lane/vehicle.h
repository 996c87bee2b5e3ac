// vehicle.h: a vehicle seen from behind, as the one ahead is.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "scene/paint/texture.h"
#include "scene/recipe/light.h"
#include "scene/recipe/recipe.h"
#include "scene/space/camera.h"

namespace stopngo {

/// A point of a vehicle's side view: how far a height lies behind the rearmost point, in metres.
struct ProfilePoint {
  double height;
  double depth;
};

struct VehicleLamp {
  enum class Role { kTail, kBrake, kLeft, kRight } role;
  double centre;  ///< metres to the right of the vehicle's middle
  double height;  ///< of its middle
  double half_width, half_height;
  double power;  ///< grey levels
};

/// Its rear is one texture, bent along the profile: each height has a depth of its own, so that a
/// slanted window closes up behind the bumper as the vehicle drives away. The flanks are never seen
/// from straight behind.
struct Vehicle {
  double half_width;
  double length;
  double body;                        ///< grey level of its paint
  std::vector<ProfilePoint> profile;  ///< from the road upwards
  Texture rear;
  std::vector<VehicleLamp> lamps;
};

/// Draws what the options leave open, number plate and dirt from the seed. texels_per_metre: of the texture,
/// which has to be somewhat finer than the pixels at the nearest distance; most_texels bounds it.
Vehicle BuildVehicle(const VehicleOptions& options, double texels_per_metre, double most_texels,
                     std::uint64_t seed);

/// Where a vehicle is and what of it is lit, at one moment.
struct VehicleState {
  double x;  ///< of the middle of its rear
  double z;
  double cosine = 1;                                ///< of the angle by which it has turned
  double lift = 0;                                  ///< of its body on its springs, metres
  double boot = 0;                                  ///< 0 shut … 1 open
  double brake = 0, tail = 0, left = 0, right = 0;  ///< how brightly lamps are lit
};

/// A vehicle at one moment, ready to be drawn row by row.
class VehicleView {
 public:
  VehicleView(const Vehicle& vehicle, const Camera& camera, const VehicleState& state, const Light& light);
  /// Whether it is far enough ahead to be seen.
  [[nodiscard]] bool Visible() const { return distance_ > 0.8; }
  void DrawRow(int row, std::span<float> light);
  void DrawLamps(int row, std::span<float> light) const;
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
  void DrawBoot(int row, std::span<float> light) const;
  void DrawLamp(const VehicleLamp& lamp, double power, double height, double stretch, int row,
                std::span<float> light) const;
  [[nodiscard]] double Power(const VehicleLamp& lamp) const;

  const Vehicle& vehicle_;
  Camera camera_;
  VehicleState state_;
  Light light_;
  double across_;
  double distance_;
  double centre_;  ///< column of the middle at the rearmost point
  std::vector<Knot> knots_;
  std::vector<Texel> sums_;
};

}  // namespace stopngo
