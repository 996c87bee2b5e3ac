// calibration.cpp: places a trained network's scores so that the decision's threshold suits them.
#include "calibration.h"

#include <cstddef>
#include <vector>

#include "evaluation.h"
#include "portable_math.h"

namespace stopngo {
namespace {

// In log odds. Beyond the range the activation's table is flat, and no score lies there.
constexpr double kStep = 0.25;
constexpr int kSteps = 24;  // to either side

/// A bias that is raised by the shift does what a threshold does that lies as much lower in log odds.
double ShiftedThreshold(double threshold, double shift) {
  const auto log_odds = Log(static_cast<float>(threshold / (1 - threshold)));
  return Logistic(log_odds - static_cast<float>(shift));
}

}  // namespace

Calibration Calibrate(std::span<const Clip> clips, const Settings& settings, double false_per_hour,
                      int jobs) {
  std::vector<Settings> tried;
  std::vector<double> shifts;
  for (int step = -kSteps; step <= kSteps; step++) {
    shifts.push_back(kStep * step);
    tried.push_back(settings);
    tried.back().threshold = ShiftedThreshold(settings.threshold, shifts.back());
  }
  const std::vector<ClipRun> runs = RunClips(clips, {"calibrating", tried, false, jobs});
  Calibration best;
  for (std::size_t i = 0; i < tried.size(); i++) {
    const Tally tally = TallyAll(runs, i);
    if (i == 0 || Better(tally, best.tally, false_per_hour)) best = {shifts[i], tally};
  }
  return best;
}

}  // namespace stopngo
