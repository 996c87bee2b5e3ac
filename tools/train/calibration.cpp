// calibration.cpp: places a trained network's scores so that the decision's threshold suits them.
#include "train/calibration.h"

#include <cstddef>
#include <deque>
#include <vector>

#include "base/memory_file.h"
#include "base/output_file.h"
#include "evaluate/evaluation.h"

namespace stopngo {
namespace {

// In log odds. Beyond the range the activation's table is flat, and no score lies there.
constexpr double kStep = 0.25;
constexpr int kSteps = 24;  // to either side

/// 0 first, then ever farther from it: of results that are alike the first is taken.
std::vector<double> Shifts() {
  std::vector<double> shifts{0};
  for (int step = 1; step <= kSteps; step++) shifts.insert(shifts.end(), {-kStep * step, kStep * step});
  return shifts;
}

}  // namespace

// A threshold moved the other way would not do the same: the decision also takes off its count for scores
// clearly below the threshold, in whole tenths, and for none at all where the threshold is below 0.2.
Calibration Calibrate(const Network& network, std::span<const Clip> clips, const Settings& settings,
                      double false_per_hour, int jobs, const FeatureFolder* features) {
  const std::vector<double> shifts = Shifts();
  std::deque<MemoryFile> files;  // the module takes weights from files alone
  std::vector<Settings> tried;
  for (const double shift : shifts) {
    Network shifted = network;
    shifted.numbers.back() += static_cast<float>(shift);
    tried.push_back(settings);
    tried.back().weights = files.emplace_back().Path();
    WriteFile(tried.back().weights, WeightsBytes(shifted));
  }
  const std::vector<ClipRun> runs =
      RunClips(clips, {.title = "calibrating", .settings = tried, .jobs = jobs, .features = features});
  Calibration best;
  for (std::size_t i = 0; i < tried.size(); i++) {
    const Tally tally = TallyAll(runs, i);
    if (i == 0 || Better(tally, best.tally, false_per_hour)) best = {shifts[i], tally};
  }
  return best;
}

}  // namespace stopngo
