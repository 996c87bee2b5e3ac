// track.h: how things move along a line: speeds that change with limited jerk, or at once.
#pragma once

#include <vector>

#include "scene/recipe/recipe.h"

namespace stopngo {

struct Span {
  double start_s;
  double end_s;
};

/// A position over time. While it rests it is exactly the same from one moment to the next.
class Track {
 public:
  /// position: at time 0.
  Track(double position, double speed) : phases_{{0, position, speed, 0, 0}} {}
  explicit Track(const MotionOptions& motion);
  /// An acceleration from a time on, at once, over the changes before.
  void Accelerate(double start_s, double acceleration);
  /// Starts from rest; the acceleration builds up over half a second and ends at a speed.
  void Start(double start_s, double acceleration, double speed);
  /// Brakes to a halt.
  void Stop(double start_s, double deceleration);
  /// At any time, before 0 as well.
  [[nodiscard]] double Position(double time_s) const;
  [[nodiscard]] double Speed(double time_s) const;
  [[nodiscard]] bool BrakingOrStanding(double time_s) const;
  /// When it moves, up to a time.
  [[nodiscard]] std::vector<Span> Moving(double end_s) const;

 private:
  /// A stretch of constant jerk and the state at its beginning.
  struct Phase {
    double begin_s;
    double position;
    double speed;
    double acceleration;
    double jerk;
  };
  [[nodiscard]] static Phase After(const Phase& phase, double duration_s, double jerk);
  [[nodiscard]] const Phase& At(double time_s) const;
  void Change(const SpeedChange& change);

  std::vector<Phase> phases_;
};

}  // namespace stopngo
