// once_gate.cpp: closed from an alarm until the next stop.
#include "host/gates/once_gate.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/common/pace.h"

namespace stopngo {
namespace {

/// Between frames that are further apart nobody knows what was, seconds.
constexpr double kLongestStep_s = 1;

}  // namespace

void OnceGate::Before(double /*time_s*/, std::optional<double> speed) {
  if (speed && std::abs(*speed) > above_) reason_ = nullptr;
}

void OnceGate::After(const GateFrame& frame) {
  const double elapsed_s = frame.time_s - last_s_;
  if (frame.decision == 1 && decision_ != 1) {
    reason_ = "told already";
    was_busy_ = false;
    busy_s_ = calm_s_ = 0;
  } else if (reason_ != nullptr && !frame.histogram.empty() && elapsed_s <= kLongestStep_s) {
    Watch(std::accumulate(frame.histogram.begin(), frame.histogram.end(), 0), elapsed_s);
  }
  decision_ = frame.decision;
  last_s_ = frame.time_s;
}

// Of a vehicle that drives, single pairs are calm, too.
void OnceGate::Watch(int sum, double elapsed_s) {
  if (!was_busy_) {
    busy_s_ = sum >= busy_ ? busy_s_ + elapsed_s : std::max(busy_s_ - elapsed_s, 0.0);
    was_busy_ = busy_s_ >= busy_time_s_ - kSameTime_s;
    return;
  }
  calm_s_ = sum <= calm_ ? calm_s_ + elapsed_s : 0;
  if (calm_s_ >= calm_time_s_ - kSameTime_s) reason_ = nullptr;
}

}  // namespace stopngo
