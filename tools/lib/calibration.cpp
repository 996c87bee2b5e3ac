// calibration.cpp: places a trained network's scores so that the decision's threshold suits them.
#include "calibration.h"

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "evaluation.h"
#include "failure.h"

namespace stopngo {
namespace {

// In log odds. Beyond the range the activation's table is flat, and no score lies there.
constexpr double kStep = 0.25;
constexpr int kSteps = 24;  // to either side

/// For the copies: the module takes weights from files alone.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "stopngo-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw Failure("no temporary folder can be made at " + name);
    path_ = name;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  [[nodiscard]] std::string File(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace

// A threshold moved the other way would not do the same: the decision also takes off its count for scores
// clearly below the threshold, in whole tenths, and for none at all where the threshold is below 0.2.
Calibration Calibrate(const Network& network, std::span<const Clip> clips, const Settings& settings,
                      double false_per_hour, int jobs) {
  const ScratchFolder folder;
  std::vector<Settings> tried;
  std::vector<double> shifts;
  for (int step = -kSteps; step <= kSteps; step++) {
    shifts.push_back(kStep * step);
    Network shifted = network;
    shifted.numbers.back() += static_cast<float>(shifts.back());
    tried.push_back(settings);
    tried.back().weights = folder.File(std::to_string(step));
    WriteWeights(tried.back().weights, shifted);
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
