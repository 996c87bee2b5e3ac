// scene_motion.h: how things move in a scene: the vehicle that drives away, the camera that shakes.
#pragma once

#include <array>
#include <cstdint>

namespace stopngo {

/// Position along a road after starting from rest: the acceleration builds up over a moment, holds,
/// and fades out at the speed limit.
class Departure {
 public:
  Departure(double start_s, double acceleration);
  /// Metres driven by a time.
  [[nodiscard]] double Travelled(double time_s) const;

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

  std::array<Phase, 4> phases_;
};

/// The picture's displacement by the idling engine, in pixels.
class Shake {
 public:
  struct Offset {
    double x;
    double y;
  };
  /// Neither coordinate ever passes the amplitude.
  Shake(double amplitude, double fps, std::uint64_t seed);
  [[nodiscard]] Offset At(std::int64_t frame) const;

 private:
  double amplitude_;
  double fps_;
  std::uint64_t seed_;
  double rock_hz_;
  double idle_hz_;
};

}  // namespace stopngo
