// speed_gate.cpp: closed while the own vehicle moves and for some time after.
#include "host/gates/speed_gate.h"

#include <cmath>

#include "host/common/pace.h"

namespace stopngo {

void SpeedGate::Before(double time_s, std::optional<double> speed) {
  if (!speed) {
    reason_ = fails_closed_ ? "own speed unknown" : nullptr;
    return;
  }
  const bool moves = std::abs(*speed) > above_;
  if (moves) moved_s_ = time_s;
  const bool just_stopped = time_s - moved_s_ < after_s_ - kSameTime_s;
  reason_ = moves ? "own vehicle moves" : just_stopped ? "own vehicle just stopped" : nullptr;
}

void SpeedGate::After(const GateFrame& /*frame*/) {}

}  // namespace stopngo
