// pace.cpp: which frames are handed over.
#include "host/common/pace.h"

#include <algorithm>
#include <cmath>

namespace stopngo {

bool Pace::Takes(double time_s, std::optional<double> next_s) {
  if (!next_s) return SlotTime() <= time_s + half_period_s_;
  const auto nearest = [&] { return SlotTime() - time_s < *next_s - SlotTime() + kSameTime_s; };
  if (!nearest()) return false;
  ++slot_;
  // Nothing new is wanted before the middle of the way to the next frame: gaps are stepped over.
  if (nearest()) {
    const double middle_s = (time_s + *next_s) / 2;
    slot_ = std::max(slot_ + 1, static_cast<std::int64_t>(std::floor(middle_s * rate_)));
    while (nearest()) ++slot_;
  }
  return true;
}

std::int64_t Pace::Count(std::int64_t frames, double fps) const {
  const double last_s = (static_cast<double>(frames) - 1) / fps;
  return static_cast<std::int64_t>(std::floor((last_s + half_period_s_) * rate_)) + 1;
}

}  // namespace stopngo
