// picture_gate.cpp: closed while there is no picture to go by.
#include "host/gates/picture_gate.h"

#include "host/common/pace.h"

namespace stopngo {

// A frame behind a gap is compared with one from before it: that pair is no evidence, nor is what was counted then.
void PictureGate::Before(double time_s, std::optional<double> /*speed*/) {
  const bool lost = time_s - last_s_ > lost_s_ + kSameTime_s;
  const bool frozen = last_s_ - same_since_s_ >= frozen_s_ - kSameTime_s && last_s_ <= time_s;
  reason_ = lost ? "picture lost" : is_black_ ? "picture black" : frozen ? "picture frozen" : nullptr;
}

void PictureGate::After(const GateFrame& frame) {
  if (!frame.repeated) same_since_s_ = frame.time_s;
  is_black_ = frame.luma < black_;
  last_s_ = frame.time_s;
}

}  // namespace stopngo
