// own_speed.h: the own vehicle's speed, as far as labels tell it.
#pragma once

#include <optional>
#include <span>

#include "base/label.h"

namespace stopngo {

/// Standing, or faster than any threshold; where a clip has no label, nobody knows it.
std::optional<double> OwnSpeed(std::span<const LabelSpan> labels, double time_s);

}  // namespace stopngo
