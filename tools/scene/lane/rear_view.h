// rear_view.h: a vehicle seen from behind, as the one ahead is.
#pragma once

#include <span>
#include <vector>

#include "scene/lane/rear.h"
#include "scene/paint/texture.h"
#include "scene/recipe/light.h"
#include "scene/space/camera.h"

namespace stopngo {

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
class RearView {
 public:
  RearView(const Rear& rear, const Camera& camera, const VehicleState& state, const Light& light);
  /// Whether it is far enough ahead to be seen.
  [[nodiscard]] bool Visible() const { return distance_ > 0.8; }
  void DrawRow(int row, std::span<float> light);
  void DrawLamps(int row, std::span<float> light) const;
  /// The rows that it covers: its roof and the road beneath its wheels.
  [[nodiscard]] double Top() const { return knots_.back().row; }
  [[nodiscard]] double Bottom() const { return knots_.front().row; }
  /// The columns at its bumper.
  [[nodiscard]] double Left() const { return centre_ - rear_.half_width * camera_.focal / distance_; }
  [[nodiscard]] double Right() const { return centre_ + rear_.half_width * camera_.focal / distance_; }

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
  void DrawLamp(const RearLamp& lamp, double power, double height, double stretch, int row,
                std::span<float> light) const;
  [[nodiscard]] double Power(const RearLamp& lamp) const;

  const Rear& rear_;
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
