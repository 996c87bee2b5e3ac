// settings.cpp: times in frames, and settings that follow from others.
#include "host/settings/settings.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "host/common/failure.h"

namespace stopngo {

int FrameCount::Frames(double fps) const {
  if (!seconds) return static_cast<int>(static_cast<std::int64_t>(value));
  const double frames = std::round(value * fps);
  if (!(frames <= std::numeric_limits<int>::max())) {
    throw Failure("a time of " + std::to_string(value) + " s has too many frames", ExitCode::kUsage);
  }
  return static_cast<int>(frames);
}

Settings OnlyLooking(Settings settings) {
  settings.weights.clear();
  settings.no_weights = true;
  settings.log = 0;
  settings.gates = 0;
  return settings;
}

}  // namespace stopngo
