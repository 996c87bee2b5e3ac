// time_jump.h: where the time stamps of a recording jump, as they do where a part of it is missing.
#pragma once

#include <algorithm>

namespace stopngo {

/// Follows the steps from picture to picture. Only one of a steady rate can be seen to lack a part: pictures that come
/// as something moves lie as far apart as they like, and one that a camera left out here and there is no jump.
class TimeJump {
 public:
  /// Whether a step of so many seconds is a jump, after those that came before it.
  bool Take(double step_s) {
    constexpr int kFew = 5;           // steps that tell no rate
    constexpr double kShort_s = 0.5;  // a jump is longer
    constexpr double kManifold = 4;   // than any step before
    constexpr double kLeftOut = 2.5;  // steps, with one picture left out
    constexpr double kStampRounding_s = 0.002;
    const bool steady = longest_s_ <= kLeftOut * shortest_s_ + kStampRounding_s;
    const bool jump = steps_ >= kFew && steady && step_s > std::max(kShort_s, kManifold * longest_s_);
    if (jump) return true;
    shortest_s_ = steps_ == 0 ? step_s : std::min(shortest_s_, step_s);
    longest_s_ = std::max(longest_s_, step_s);
    ++steps_;
    return false;
  }

 private:
  double shortest_s_ = 0;
  double longest_s_ = 0;
  int steps_ = 0;
};

}  // namespace stopngo
