// light_gate.cpp: closed while the light changes.
#include "host/gates/light_gate.h"

#include <algorithm>
#include <cmath>

#include "host/common/pace.h"

namespace stopngo {
namespace {

/// A change is measured over so long at least, a sixth of a second, whatever the frames' rate: at 30 a second the
/// flicker of a lamp, one level up and one down, would be 30 levels a second.
constexpr double kSpan_s = 1.0 / 6;

}  // namespace

void LightGate::Before(double time_s, std::optional<double> /*speed*/) {
  reason_ = time_s - changed_s_ < calm_s_ - kSameTime_s ? "light changes" : nullptr;
}

void LightGate::After(const GateFrame& frame) {
  const double since_s =
      frame.time_s - reference_s_;  // without end on the first frame, which so changes nothing
  if (std::abs(frame.luma - reference_) > rate_ * std::max(since_s, kSpan_s)) changed_s_ = frame.time_s;
  if (since_s < kSpan_s - kSameTime_s) return;
  reference_ = frame.luma;
  reference_s_ = frame.time_s;
}

}  // namespace stopngo
