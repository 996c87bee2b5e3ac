// own_speed.cpp: the own vehicle's speed, as far as labels tell it.
#include "evaluate/own_speed.h"

#include <limits>

namespace stopngo {

std::optional<double> OwnSpeed(std::span<const LabelSpan> labels, double time_s) {
  constexpr double kFast = std::numeric_limits<double>::max();
  for (const LabelSpan& span : labels) {
    if (time_s < span.start_s || time_s >= span.end_s) continue;
    return span.activity == Activity::kEgoMoving ? kFast : 0;
  }
  return std::nullopt;
}

}  // namespace stopngo
