// light_gate.h: closed while the light changes: steps of exposure and shadows move no vehicle.
#pragma once

#include <limits>

#include "host/gates/gate.h"
#include "host/settings/settings.h"

namespace stopngo {

class LightGate : public Gate {
 public:
  explicit LightGate(const Settings& settings)
      : Gate(GateHold::kCountsOn), rate_(settings.light_rate), calm_s_(settings.light_calm_s) {}
  void Before(double time_s, std::optional<double> speed) override;
  void After(const GateFrame& frame) override;

 private:
  double rate_;    ///< levels a second
  double calm_s_;  ///< for so long the light has not changed faster when it opens
  double reference_ = 0;
  double reference_s_ = -std::numeric_limits<double>::infinity();
  double changed_s_ = -std::numeric_limits<double>::infinity();
};

}  // namespace stopngo
