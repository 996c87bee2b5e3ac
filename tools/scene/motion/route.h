// route.h: how actors move: along which way, and how fast.
#pragma once

#include <vector>

#include "scene/space/pose.h"

namespace stopngo {

/// A position over time, made of stretches of constant acceleration.
class Pace {
 public:
  /// position: at time 0.
  Pace(double position, double speed) : legs_{{0, position, speed, 0}} {}
  /// From then on, over the changes before.
  void Change(double start_s, double acceleration);
  /// Starts from rest; the acceleration builds up over half a second and ends at a speed.
  void Start(double start_s, double acceleration, double speed);
  /// Brakes to a halt.
  void Stop(double start_s, double deceleration);
  /// At any time, before 0 as well.
  [[nodiscard]] double Position(double time_s) const;
  [[nodiscard]] bool BrakingOrStanding(double time_s) const;

 private:
  struct Leg {
    double begin_s;
    double position;
    double speed;
    double acceleration;
  };
  [[nodiscard]] const Leg& At(double time_s) const;
  std::vector<Leg> legs_;
};

/// Straight on, and after a while around a bend.
struct Route {
  double x = 0, z = 0;    ///< at position 0
  double heading = 0;     ///< turns: 0 away from the camera, 0.25 to the right
  double straight = 1e9;  ///< metres to the bend
  double radius = 1;      ///< of the bend
  double bend = 0;        ///< turns by which it bends, positive to the right

  [[nodiscard]] Pose At(double position) const;
};

}  // namespace stopngo
