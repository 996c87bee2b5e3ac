// shake.cpp: the camera's shake as a function of time.
#include "scene/lens/shake.h"

#include <algorithm>
#include <cmath>

#include "base/random.h"
#include "base/streams.h"
#include "host/common/exact_math.h"
#include "scene/paint/noise.h"

namespace stopngo {
namespace {

constexpr double kJolt_s = 0.45;  // after which a jolt has lost a half
constexpr double kJitterHz = 30;
constexpr double kRoadHz = 6;

double Noise(double at, std::uint32_t seed) {
  return static_cast<double>(ValueNoise(static_cast<float>(at), 0.5F, seed));
}

}  // namespace

Shake::Shake(const CameraOptions& options, std::uint64_t seed) : options_(options), seed_(0) {
  Random random = RandomOf(seed, stream::kShake);
  rock_hz_ = random.Uniform(1.2, 2.2);  // the body on its springs
  idle_hz_ = random.Uniform(22, 28);    // four cylinders, two ignitions a turn, at 660 to 840 turns a minute
  seed_ = static_cast<std::uint32_t>(random.Next());
}

/// Wind comes in gusts of some seconds; nothing holds a windscreen's camera quite still.
Offset Shake::Sway(double time_s) const {
  const double gust = options_.gusts * std::max(0.0, Noise(0.3 * time_s, seed_));
  const double drift = 0.15 * time_s;
  // A hand sways about once a second, and trembles more often by less.
  const auto hand = [this, time_s](std::uint32_t stream) {
    return options_.hand *
           (0.8 * Noise(0.9 * time_s, seed_ + stream) + 0.2 * Noise(4.3 * time_s, seed_ + stream + 1));
  };
  return {gust * Noise(2.1 * time_s, seed_ + 1) + options_.drift * Noise(drift, seed_ + 2) + hand(9),
          gust * Noise(2.6 * time_s, seed_ + 3) + options_.drift * Noise(drift, seed_ + 4) + hand(11)};
}

/// A door is shut, a wheel drops: the body swings out on its springs.
double Shake::Jolts(double time_s) const {
  double sum = 0;
  for (const Jolt& jolt : options_.jolts) {
    const double since = time_s - jolt.start_s;
    if (since > 0) {
      const double decay = 1 / (1 + (since / kJolt_s) * (since / kJolt_s) * (since / kJolt_s));
      sum += jolt.pixels * decay * SineOfTurns(rock_hz_ * since);
    }
  }
  return sum;
}

Offset Shake::At(double time_s, double speed) const {
  const double rock = SineOfTurns(rock_hz_ * time_s);
  const double idle = SineOfTurns(idle_hz_ * time_s);
  const Offset sway = Sway(time_s);
  const double road = options_.road_shake * std::min(std::fabs(speed), 20.0) / 10;
  const double jolts = Jolts(time_s);
  // An engine shakes its car up and down more than sideways. The weights of a coordinate sum to at most 1.
  return {options_.vibration * (0.2 * rock + 0.15 * idle + 0.15 * Noise(kJitterHz * time_s, seed_ + 5)) +
              sway.x + 0.3 * jolts + 0.4 * road * Noise(0.5 * kRoadHz * time_s, seed_ + 6),
          options_.vibration * (0.3 * rock + 0.4 * idle + 0.3 * Noise(kJitterHz * time_s, seed_ + 7)) +
              sway.y + jolts + road * Noise(kRoadHz * time_s, seed_ + 8)};
}

double Shake::Reach() const {
  double reach = options_.vibration + options_.gusts + options_.drift + options_.hand;
  for (const Jolt& jolt : options_.jolts) {
    reach += std::fabs(jolt.pixels);
  }
  return reach;
}

}  // namespace stopngo
