// evaluation.h: the real module over many labelled clips, with several settings side by side.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "clips/clip.h"
#include "evaluate/baseline.h"
#include "evaluate/pair_figures.h"
#include "evaluate/tally.h"
#include "features/feature_folder.h"
#include "host/detector.h"
#include "host/settings/settings.h"

namespace stopngo {

/// What the module said to a clip.
struct ClipRun {
  std::vector<LabelSpan> labels;
  double fps = 0;                          ///< of the frames handed over
  std::vector<std::vector<Event>> events;  ///< a list a setting: its alarms as judged, and what it missed
  std::vector<FrameSignals> signals;       ///< where they were asked for
  std::vector<PairFigures> motion;         ///< likewise
};

struct RunOptions {
  std::string title;  ///< of the progress bar
  std::span<const Settings> settings;
  bool signals = false;
  bool motion = false;
  int jobs = 1;
  const FeatureFolder* features = nullptr;  ///< in the stead of the clips' pictures
};

/// Settings that analyse every frame, for which no weights are needed: no score is ever above 1, and so no hold begins.
Settings Watching(Settings settings);

/// Runs a detector a setting over every clip, all of a clip's on the same frames. What their gates hear of the own
/// speed comes from the labels. The runs come in the
/// order of the clips, and are the same for any number of jobs. Throws Failure.
std::vector<ClipRun> RunClips(std::span<const Clip> clips, const RunOptions& options);

/// By kind in the order of first appearance, of the setting with a number.
std::vector<NamedTally> TallyKinds(std::span<const Clip> clips, std::span<const ClipRun> runs,
                                   std::size_t setting);
Tally TallyAll(std::span<const ClipRun> runs, std::size_t setting);

}  // namespace stopngo
