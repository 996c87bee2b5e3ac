// ego_path.h: where our own vehicle is and where it looks while it drives.
#pragma once

#include <vector>

#include "scene/motion/track.h"
#include "scene/space/camera.h"

namespace stopngo {

class EgoPath {
 public:
  EgoPath(const MotionOptions& along, const MotionOptions& turning, double length_s);
  /// Moves, turns and tilts a camera that waits at the beginning.
  void Place(Camera& camera, double time_s) const;
  [[nodiscard]] double Speed(double time_s) const { return along_.Speed(time_s); }
  /// Whether nothing of it changes around a moment.
  [[nodiscard]] bool Rests(double time_s) const;
  [[nodiscard]] std::vector<Span> Moving(double end_s) const;
  [[nodiscard]] double Travelled() const { return points_.back().z; }

 private:
  struct Point {
    double x, z;
  };
  Track along_;
  Track turning_;
  std::vector<Point> points_;
};

}  // namespace stopngo
