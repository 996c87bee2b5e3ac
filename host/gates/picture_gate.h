// picture_gate.h: closed while there is no picture to go by: it is frozen, black, or frames are lost.
#pragma once

#include <limits>

#include "host/gates/gate.h"
#include "host/settings/settings.h"

namespace stopngo {

class PictureGate : public Gate {
 public:
  explicit PictureGate(const Settings& settings)
      : Gate(GateHold::kStartsNew),
        frozen_s_(settings.picture_frozen_s),
        black_(settings.picture_black),
        lost_s_(settings.picture_lost_s) {}
  void Before(double time_s, std::optional<double> speed) override;
  void After(const GateFrame& frame) override;

 private:
  double frozen_s_;  ///< of pictures that are the same in every pixel
  double black_;     ///< mean luma
  double lost_s_;    ///< between two frames

  double last_s_ = std::numeric_limits<double>::infinity();  ///< time of the frame before
  double same_since_s_ = 0;  ///< of the first frame that looked like the last one
  bool is_black_ = false;
};

}  // namespace stopngo
