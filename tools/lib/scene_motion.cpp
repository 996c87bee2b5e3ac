// scene_motion.cpp: departure with limited jerk, and the shake of an idling car.
#include "scene_motion.h"

#include <algorithm>

#include "scene_random.h"

namespace stopngo {
namespace {

constexpr double kBuildUp_s = 0.8;       // clutch or converter: full acceleration is not there at once
constexpr double kSpeedLimit = 13.9;     // m/s, 50 km/h
constexpr std::uint64_t kStream = 0x5a;  // of random numbers: the shake's

}  // namespace

Departure::Departure(double start_s, double acceleration) {
  // A strong acceleration would pass the speed limit while it still builds up: shorten the build-up.
  const double build_up = std::min(kBuildUp_s, kSpeedLimit / acceleration);
  const double constant = kSpeedLimit / acceleration - build_up;
  const double jerk = acceleration / build_up;
  phases_[0] = {start_s, 0, 0, 0, jerk};
  phases_[1] = After(phases_[0], build_up, 0);
  phases_[2] = After(phases_[1], constant, -jerk);
  phases_[3] = After(phases_[2], build_up, 0);
  phases_[3].acceleration = 0;  // exactly, where the sum leaves a rounding error that would grow with t²
}

Departure::Phase Departure::After(const Phase& phase, double t, double jerk) {
  return {phase.begin_s + t,
          phase.position + t * (phase.speed + t * (phase.acceleration / 2 + t * phase.jerk / 6)),
          phase.speed + t * (phase.acceleration + t * phase.jerk / 2), phase.acceleration + t * phase.jerk,
          jerk};
}

double Departure::Travelled(double time_s) const {
  if (time_s <= phases_[0].begin_s) {
    return 0;
  }
  const auto next = std::find_if(phases_.begin() + 1, phases_.end(),
                                 [time_s](const Phase& phase) { return time_s < phase.begin_s; });
  const Phase& phase = *(next - 1);
  return After(phase, time_s - phase.begin_s, 0).position;
}

Shake::Shake(double amplitude, double fps, std::uint64_t seed)
    : amplitude_(amplitude), fps_(fps), seed_(seed) {
  Random random(seed, kStream);
  rock_hz_ = random.Uniform(1.2, 2.2);  // the body on its springs
  idle_hz_ = random.Uniform(22, 28);    // four cylinders, two ignitions a turn, at 660 to 840 turns a minute
}

Shake::Offset Shake::At(std::int64_t frame) const {
  const double time_s = static_cast<double>(frame) / fps_;
  Random jitter(seed_ + static_cast<std::uint64_t>(frame) * 2, kStream + 1);
  const double rock = SineOfTurns(rock_hz_ * time_s);
  const double idle = SineOfTurns(idle_hz_ * time_s);
  // An engine shakes its car up and down more than sideways. The weights of a coordinate sum to at most 1.
  return {amplitude_ * (0.2 * rock + 0.15 * idle + jitter.Uniform(-0.15, 0.15)),
          amplitude_ * (0.3 * rock + 0.4 * idle + jitter.Uniform(-0.3, 0.3))};
}

}  // namespace stopngo
