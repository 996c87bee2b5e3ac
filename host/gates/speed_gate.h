// speed_gate.h: closed while the own vehicle moves and for some time after: what is seen then is its own motion, and of
// a driver who has just stopped behind a vehicle that goes on, nobody needs to be told.
#pragma once

#include <limits>

#include "host/gates/gate.h"
#include "host/settings/settings.h"

namespace stopngo {

class SpeedGate : public Gate {
 public:
  explicit SpeedGate(const Settings& settings)
      : Gate(GateHold::kStartsNew),
        above_(settings.speed_above),
        after_s_(settings.speed_time_s),
        fails_closed_(settings.speed_fails == kFailsClosed) {}
  void Before(double time_s, std::optional<double> speed) override;
  void After(const GateFrame& frame) override;

 private:
  double above_;
  double after_s_;
  bool fails_closed_;
  double moved_s_ = -std::numeric_limits<double>::infinity();
};

}  // namespace stopngo
