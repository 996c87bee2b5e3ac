// rear_view.h: a vehicle's rear as it is seen at one moment.
#pragma once

#include <vector>

#include "scene/paint/sheet.h"
#include "scene/paint/texture.h"
#include "scene/recipe/light.h"
#include "scene/space/camera.h"
#include "scene/vehicle/rear.h"
#include "scene/vehicle/state.h"

namespace stopngo {

class RearView {
 public:
  /// state: of the vehicle, whose pose here is that of the middle of its rear.
  RearView(const Rear& rear, const Camera& camera, const VehicleState& state, const Light& light);
  /// Whether it is far enough ahead, and turned to us.
  [[nodiscard]] bool Visible() const { return distance_ > 0.8 && cosine_ > 0.03; }
  void DrawBody(Sheet& sheet);
  void DrawLamps(Sheet& sheet) const;
  /// The rows that it covers: its roof and the road beneath its wheels.
  [[nodiscard]] double Top() const { return knots_.back().row; }
  [[nodiscard]] double Bottom() const { return knots_.front().row; }
  /// The columns at its bumper.
  [[nodiscard]] double Left() const { return centre_ - HalfWidth(); }
  [[nodiscard]] double Right() const { return centre_ + HalfWidth(); }

 private:
  /// A profile point in the picture.
  struct Knot {
    double row;
    double height;
    double distance;
  };
  [[nodiscard]] double HalfWidth() const { return rear_.half_width * cosine_ * camera_.focal / distance_; }
  [[nodiscard]] Knot At(double row) const;
  void DrawRow(int row, Sheet& sheet);
  void DrawBoot(int row, Sheet& sheet) const;
  void DrawLamp(const RearLamp& lamp, double power, double height, double stretch, Sheet& sheet) const;
  [[nodiscard]] double Power(const RearLamp& lamp) const;

  const Rear& rear_;
  Camera camera_;
  VehicleState state_;
  Light light_;
  double across_;
  double distance_;
  double cosine_;  ///< of the angle between its way and the line from the lens: how wide it looks
  double centre_;  ///< column of the middle at the rearmost point
  std::vector<Knot> knots_;
  std::vector<Texel> sums_;
};

}  // namespace stopngo
