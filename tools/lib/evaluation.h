// evaluation.h: the real module over many labelled clips, with several settings side by side.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "baseline.h"
#include "clip.h"
#include "detector.h"
#include "settings.h"
#include "tally.h"

namespace CLI {
class App;
}

namespace stopngo {

/// The options of every subcommand that runs the module over manifests.
struct EvaluationOptions {
  explicit EvaluationOptions(CLI::App& app);
  /// The clips of all manifests, after the configuration was loaded. Throws Failure.
  std::vector<Clip> Clips();
  /// What is read beside the clips: manifests, configuration, weights.
  [[nodiscard]] std::vector<std::string> Files() const;

  Settings settings;
  std::vector<std::string> manifests;
  int jobs;
  double false_per_hour = 1;  ///< wanted at most, of standing
  bool json = false;

 private:
  SettingsOptions options_;
};

/// What the module said to a clip.
struct ClipRun {
  std::vector<LabelSpan> labels;
  double fps = 0;                           ///< of the frames handed over
  std::vector<std::vector<double>> alarms;  ///< a list a setting: when the decision changed to 1, seconds
  std::vector<FrameSignals> signals;        ///< where they were asked for
};

struct RunOptions {
  std::string title;  ///< of the progress bar
  std::span<const Settings> settings;
  bool signals = false;
  int jobs = 1;
};

/// Runs a detector a setting over every clip, all of a clip's on the same frames. The runs come in the
/// order of the clips, and are the same for any number of jobs. Throws Failure.
std::vector<ClipRun> RunClips(std::span<const Clip> clips, const RunOptions& options);

/// By kind in the order of first appearance, of the setting with a number.
std::vector<NamedTally> TallyKinds(std::span<const Clip> clips, std::span<const ClipRun> runs,
                                   std::size_t setting);
Tally TallyAll(std::span<const ClipRun> runs, std::size_t setting);

}  // namespace stopngo
