// track.cpp: stretches of constant jerk, which may be none, one after the other.
#include "scene/motion/track.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace stopngo {
namespace {

constexpr double kBuildUp_s = 0.5;
constexpr int kSteps = 5;  // in which an acceleration builds up

}  // namespace

Track::Track(const MotionOptions& motion) : Track(0, motion.speed) {
  for (const SpeedChange& change : motion.changes) {
    Change(change);
  }
}

void Track::Change(const SpeedChange& change) {
  const double begin = std::max(change.start_s, phases_.back().begin_s);
  const double difference = change.speed - phases_.back().speed;
  if (difference == 0) {
    return;
  }
  // A strong acceleration would pass the speed while it still builds up: shorten the build-up.
  const double total = std::fabs(difference) / change.acceleration;
  const double build_up = std::min(change.build_up_s, total);
  const double jerk = (difference > 0 ? 1 : -1) * change.acceleration / build_up;
  phases_.push_back(After(phases_.back(), begin - phases_.back().begin_s, jerk));
  phases_.push_back(After(phases_.back(), build_up, 0));
  phases_.push_back(After(phases_.back(), total - build_up, -jerk));
  phases_.push_back(After(phases_.back(), build_up, 0));
  // Exactly, where the sums leave rounding errors that would grow with time.
  phases_.back().speed = change.speed;
  phases_.back().acceleration = 0;
}

void Track::Accelerate(double start_s, double acceleration) {
  Phase phase = After(phases_.back(), start_s - phases_.back().begin_s, 0);
  phase.begin_s = start_s;
  phase.acceleration = acceleration;
  phases_.push_back(phase);
}

void Track::Start(double start_s, double acceleration, double speed) {
  for (int step = 1; step <= kSteps; step++) {
    Accelerate(start_s + (step - 1) * kBuildUp_s / kSteps, acceleration * step / kSteps);
  }
  const Phase& full = phases_.back();
  Accelerate(full.begin_s + std::max(0.0, speed - full.speed) / acceleration, 0);
}

void Track::Stop(double start_s, double deceleration) {
  Accelerate(start_s, -deceleration);
  const Phase& phase = phases_.back();
  Accelerate(phase.begin_s + phase.speed / deceleration, 0);
  phases_.back().speed = 0;  // exactly, where a rounding error would let it creep
}

Track::Phase Track::After(const Phase& phase, double t, double jerk) {
  return {phase.begin_s + t,
          phase.position + t * (phase.speed + t * (phase.acceleration / 2 + t * phase.jerk / 6)),
          phase.speed + t * (phase.acceleration + t * phase.jerk / 2), phase.acceleration + t * phase.jerk,
          jerk};
}

const Track::Phase& Track::At(double time_s) const {
  const auto next = std::find_if(phases_.begin() + 1, phases_.end(),
                                 [time_s](const Phase& phase) { return time_s < phase.begin_s; });
  return *(next - 1);
}

double Track::Position(double time_s) const {
  const Phase& phase = At(time_s);
  return After(phase, time_s - phase.begin_s, 0).position;
}

double Track::Speed(double time_s) const {
  const Phase& phase = At(time_s);
  return After(phase, time_s - phase.begin_s, 0).speed;
}

bool Track::BrakingOrStanding(double time_s) const {
  const Phase& phase = At(time_s);
  return phase.acceleration < 0 || (phase.speed == 0 && phase.acceleration == 0);
}

std::vector<Span> Track::Moving(double end_s) const {
  std::vector<Span> spans;
  for (std::size_t i = 0; i < phases_.size() && phases_[i].begin_s < end_s; i++) {
    const Phase& phase = phases_[i];
    const double until = i + 1 < phases_.size() ? std::min(phases_[i + 1].begin_s, end_s) : end_s;
    const bool rests = phase.speed == 0 && phase.acceleration == 0 && phase.jerk == 0;
    if (rests || until <= phase.begin_s) {
      continue;
    }
    if (!spans.empty() && spans.back().end_s == phase.begin_s) {
      spans.back().end_s = until;
    } else {
      spans.push_back({phase.begin_s, until});
    }
  }
  return spans;
}

}  // namespace stopngo
