// evaluation.cpp: the real module over many labelled clips, with several settings side by side.
#include "evaluate/evaluation.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "base/parallel.h"
#include "base/progress.h"
#include "evaluate/own_speed.h"
#include "evaluate/replay.h"
#include "host/common/failure.h"

namespace stopngo {
namespace {

/// The settings with the place of a clip's region in its frames.
Settings SettingsFor(const OpenedClip& clip, const Settings& settings) {
  const SourceInfo& info = clip.frames->Info();
  Settings placed = Placed(settings, clip.region, info.width, info.height);
  placed.speed_file.clear();  // tells the speed of now
  return placed;
}

class ClipRunner {
 public:
  ClipRunner(const Module& module, const RunOptions& options, const Clip& clip)
      : options_(options), clip_(OpenClip(clip, options.settings.front().rate, 0)) {
    const SourceInfo& info = clip_.frames->Info();
    for (const Settings& settings : options.settings) {
      detectors_.push_back(std::make_unique<Detector>(module, SettingsFor(clip_, settings), info));
    }
    if (options.signals || options.motion) {
      const Settings watching = Watching(SettingsFor(clip_, options.settings.front()));
      watcher_ = std::make_unique<Detector>(module, watching, info);
    }
    run_.labels = clip_.labels;
    run_.fps = info.fps;
    alarms_s_.resize(detectors_.size());
  }

  ClipRun Run() {
    LumaFrame frame;
    double last_s = 0;
    while (clip_.frames->Next(frame)) {
      last_s = frame.time_s;
      const std::optional<double> speed = OwnSpeed(clip_.labels, frame.time_s);
      for (std::size_t i = 0; i < detectors_.size(); ++i) {
        if (speed) detectors_[i]->SetSpeed(*speed, frame.time_s);
        const FrameReport report = detectors_[i]->Write(frame);
        if (report.changed && report.decision == 1) alarms_s_[i].push_back(report.time_s);
      }
      if (!watcher_ || !watcher_->Write(frame).analysed) continue;
      if (options_.signals) run_.signals.push_back(ReadSignals(frame.time_s, watcher_->Context()));
      if (options_.motion) {
        const VEL_STOPNGO_CTX& context = watcher_->Context();
        run_.motion.push_back(ReadPairFigures(frame.time_s, context.MotionChunk, context.Features));
      }
    }
    CheckEnd(clip_, last_s);
    for (const std::vector<double>& alarms_s : alarms_s_) run_.events.push_back(Judge(alarms_s, run_.labels));
    return std::move(run_);
  }

 private:
  const RunOptions& options_;
  OpenedClip clip_;
  std::vector<std::unique_ptr<Detector>> detectors_;
  std::unique_ptr<Detector> watcher_;
  std::vector<std::vector<double>> alarms_s_;  ///< a list a setting: when the decision changed to 1
  ClipRun run_;
};

}  // namespace

Settings Watching(Settings settings) {
  settings = OnlyLooking(std::move(settings));
  settings.threshold = 2;
  return settings;
}

std::vector<ClipRun> RunClips(std::span<const Clip> clips, const RunOptions& options) {
  const Module module;
  std::vector<ClipRun> runs(clips.size());
  std::optional<Progress> progress;
  // The module's own lines and a progress bar would write over each other.
  if (options.settings.front().log <= 0) progress.emplace(options.title, std::ssize(clips));
  std::mutex drawing;
  InParallel(clips.size(), options.jobs, [&](std::size_t i) {
    try {
      runs[i] = options.features != nullptr ? ReplayClip(module, options, clips[i])
                                            : ClipRunner(module, options, clips[i]).Run();
    } catch (const Failure& failure) {
      throw NamingClip(clips[i], failure);
    }
    const std::lock_guard lock(drawing);
    if (progress) progress->Step();
  });
  return runs;
}

std::vector<NamedTally> TallyKinds(std::span<const Clip> clips, std::span<const ClipRun> runs,
                                   std::size_t setting) {
  std::vector<NamedTally> kinds;
  for (std::size_t i = 0; i < clips.size(); ++i) {
    auto kind = std::find_if(kinds.begin(), kinds.end(),
                             [&](const NamedTally& known) { return known.name == clips[i].kind; });
    if (kind == kinds.end()) kind = kinds.insert(kinds.end(), {clips[i].kind, {}});
    kind->tally.Add(runs[i].events[setting], runs[i].labels);
  }
  return kinds;
}

Tally TallyAll(std::span<const ClipRun> runs, std::size_t setting) {
  Tally all;
  for (const ClipRun& run : runs) all.Add(run.events[setting], run.labels);
  return all;
}

}  // namespace stopngo
