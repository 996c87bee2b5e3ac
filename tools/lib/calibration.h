// calibration.h: places a trained network's scores so that the decision's threshold suits them.
#pragma once

#include <span>
#include <string>

#include "clip.h"
#include "settings.h"
#include "tally.h"

namespace stopngo {

struct Calibration {
  double shift = 0;  ///< to be added to the output's bias
  Tally tally;       ///< what the module then makes of the clips
};

/// settings: with the weights file as trained, and the decision that the scores are to suit. Runs the
/// module itself over the clips, with many thresholds side by side, and picks the best: see Better.
Calibration Calibrate(std::span<const Clip> clips, const Settings& settings, double false_per_hour, int jobs);

}  // namespace stopngo
