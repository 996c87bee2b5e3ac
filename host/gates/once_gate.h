// once_gate.h: closed from an alarm until the next stop: one alert a stop.
#pragma once

#include "host/gates/gate.h"
#include "host/settings/settings.h"

namespace stopngo {

/// The next stop is known by the own speed, and without it by the picture: much motion for some time, then little.
class OnceGate : public Gate {
 public:
  explicit OnceGate(const Settings& settings)
      : Gate(GateHold::kStartsNew),
        above_(settings.speed_above),
        busy_(settings.once_busy),
        calm_(settings.once_calm),
        busy_time_s_(settings.once_busy_time_s),
        calm_time_s_(settings.once_calm_time_s) {}
  void Before(double time_s, std::optional<double> speed) override;
  void After(const GateFrame& frame) override;

 private:
  void Watch(int sum, double elapsed_s);

  double above_;
  int busy_;  ///< sum of a histogram
  int calm_;
  double busy_time_s_;
  double calm_time_s_;

  int decision_ = 0;   ///< after the frame before
  double last_s_ = 0;  ///< its time
  double busy_s_ = 0;  ///< how long it has been busy since the alarm; what was not takes it back
  double calm_s_ = 0;  ///< how long it has been calm after that, without a break
  bool was_busy_ = false;
};

}  // namespace stopngo
