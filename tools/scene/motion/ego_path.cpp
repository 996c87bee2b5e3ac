// ego_path.cpp: our own vehicle's way, added up from speed and heading.
#include "scene/motion/ego_path.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace stopngo {
namespace {

constexpr double kStep_s = 0.02;
constexpr double kNod = 0.004;  // by which braking with 1 m/s² tilts a car down, radians

}  // namespace

EgoPath::EgoPath(const MotionOptions& along, const MotionOptions& turning, double length_s)
    : along_(along), turning_(turning), points_{{0, 0}} {
  for (int i = 0; i * kStep_s < length_s + 1; i++) {
    const double time_s = i * kStep_s;
    const double step = along_.Position(time_s + kStep_s) - along_.Position(time_s);
    Camera heading;
    Turn(heading, turning_.Position(time_s));
    points_.push_back({points_.back().x + heading.sine * step, points_.back().z + heading.cosine * step});
  }
}

void EgoPath::Place(Camera& camera, double time_s) const {
  const double at = std::clamp(time_s / kStep_s, 0.0, static_cast<double>(points_.size() - 2));
  const auto whole = static_cast<std::size_t>(at);
  const double share = at - static_cast<double>(whole);
  const Point& from = points_[whole];
  const Point& to = points_[whole + 1];
  camera.x_m = from.x + (to.x - from.x) * share;
  camera.z_m = from.z + (to.z - from.z) * share;
  Turn(camera, turning_.Position(time_s));
  // Springs take a moment: the mean acceleration around it.
  const double acceleration = (along_.Speed(time_s + 0.1) - along_.Speed(time_s - 0.2)) / 0.3;
  camera.horizon += kNod * acceleration * camera.focal;
}

bool EgoPath::Rests(double time_s) const {
  const auto still = [time_s](const Track& track) {
    return track.Speed(time_s - 0.25) == 0 && track.Speed(time_s) == 0 && track.Speed(time_s + 0.15) == 0;
  };
  return still(along_) && still(turning_);
}

std::vector<Span> EgoPath::Moving(double end_s) const {
  std::vector<Span> spans = along_.Moving(end_s);
  for (const Span& span : turning_.Moving(end_s)) {
    spans.push_back(span);
  }
  std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.start_s < b.start_s; });
  std::vector<Span> joined;
  for (const Span& span : spans) {
    if (!joined.empty() && span.start_s <= joined.back().end_s) {
      joined.back().end_s = std::max(joined.back().end_s, span.end_s);
    } else {
      joined.push_back(span);
    }
  }
  return joined;
}

}  // namespace stopngo
