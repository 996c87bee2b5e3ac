// calibration.h: places a trained network's scores so that the decision's threshold suits them.
#pragma once

#include <span>

#include "clips/clip.h"
#include "evaluate/tally.h"
#include "features/feature_folder.h"
#include "host/settings/settings.h"
#include "host/settings/weights_file.h"

namespace stopngo {

struct Calibration {
  double shift = 0;  ///< to be added to the output's bias
  Tally tally;       ///< what the module then makes of the clips
};

/// settings: with the decision that the scores are to suit; their weights do not matter. Runs the module
/// itself over the clips, with copies of the network side by side whose biases differ, and picks the best:
/// see Better; of biases that do equally well, the one moved least. features: in the stead of the clips' pictures.
/// Throws Failure.
Calibration Calibrate(const Network& network, std::span<const Clip> clips, const Settings& settings,
                      double false_per_hour, int jobs, const FeatureFolder* features = nullptr);

}  // namespace stopngo
