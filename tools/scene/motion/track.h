// track.h: how things move along a line: speeds that change with limited jerk.
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
  explicit Track(const MotionOptions& motion);
  [[nodiscard]] double Position(double time_s) const;
  [[nodiscard]] double Speed(double time_s) const;
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
