// evaluation.cpp: the real module over many labelled clips, with several settings side by side.
#include "evaluation.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <memory>
#include <mutex>
#include <optional>

#include "failure.h"
#include "interruption.h"
#include "manifest.h"
#include "parallel.h"
#include "progress.h"

namespace stopngo {
namespace {

/// The settings with the place of a clip's region in its frames.
Settings SettingsFor(const OpenedClip& clip, Settings settings) {
  settings.input_width = clip.frames->Info().width;
  settings.input_height = clip.frames->Info().height;
  settings.roi_x = clip.region.x;
  settings.roi_y = clip.region.y;
  settings.roi_width = clip.region.width;
  settings.roi_height = clip.region.height;
  return settings;
}

/// Settings that analyse every frame: no score is ever above 1, and so no hold begins.
Settings Watching(Settings settings) {
  settings.weights.clear();
  settings.no_weights = true;
  settings.threshold = 2;
  settings.log = 0;
  return settings;
}

class ClipRunner {
 public:
  ClipRunner(const Module& module, const RunOptions& options, const Clip& clip)
      : clip_(OpenClip(clip, options.settings.front().rate, 0)) {
    const SourceInfo& info = clip_.frames->Info();
    for (const Settings& settings : options.settings) {
      detectors_.push_back(std::make_unique<Detector>(module, SettingsFor(clip_, settings), info));
    }
    if (options.signals) {
      const Settings watching = Watching(SettingsFor(clip_, options.settings.front()));
      watcher_ = std::make_unique<Detector>(module, watching, info);
    }
    run_.labels = clip_.labels;
    run_.fps = info.fps;
    run_.alarms.resize(detectors_.size());
  }

  ClipRun Run() {
    LumaFrame frame;
    double last_s = 0;
    while (clip_.frames->Next(frame)) {
      last_s = frame.time_s;
      for (std::size_t i = 0; i < detectors_.size(); ++i) {
        const FrameReport report = detectors_[i]->Write(frame);
        if (report.changed && report.decision == 1) run_.alarms[i].push_back(report.time_s);
      }
      if (!watcher_ || !watcher_->Write(frame).analysed) continue;
      run_.signals.push_back(ReadSignals(frame.time_s, watcher_->Context()));
    }
    CheckEnd(clip_, last_s);
    return std::move(run_);
  }

 private:
  OpenedClip clip_;
  std::vector<std::unique_ptr<Detector>> detectors_;
  std::unique_ptr<Detector> watcher_;
  ClipRun run_;
};

}  // namespace

EvaluationOptions::EvaluationOptions(CLI::App& app) : jobs(HardwareJobs()), options_(app, settings) {
  app.add_option("MANIFEST", manifests, "tab-separated list of clips: files, synth:KIND:FIRST-LAST")
      ->required();
  app.add_option("--jobs", jobs, "threads; the results do not depend on them")
      ->type_name("N")
      ->check(CLI::Range(1, 1024))
      ->capture_default_str();
  app.add_option("--false-alarms-per-hour", false_per_hour,
                 "of standing: the limit within which the best is searched")
      ->type_name("NUMBER")
      ->check(CLI::NonNegativeNumber)
      ->capture_default_str();
  app.add_flag("--json", json, "JSON Lines");
}

std::vector<Clip> EvaluationOptions::Clips() {
  options_.Complete();
  return ReadManifests(manifests, settings);
}

std::vector<std::string> EvaluationOptions::Files() const {
  std::vector<std::string> files = options_.Files();
  files.insert(files.end(), manifests.begin(), manifests.end());
  return files;
}

std::vector<ClipRun> RunClips(std::span<const Clip> clips, const RunOptions& options) {
  const Module module;
  std::vector<ClipRun> runs(clips.size());
  std::optional<Progress> progress;
  // The module's own lines and a progress bar would write over each other.
  if (options.settings.front().log <= 0) progress.emplace(options.title, std::ssize(clips));
  std::mutex drawing;
  InParallel(clips.size(), options.jobs, [&](std::size_t i) {
    if (Interrupted()) throw Failure("interrupted");
    try {
      runs[i] = ClipRunner(module, options, clips[i]).Run();
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
    kind->tally.Add(Judge(runs[i].alarms[setting], runs[i].labels), runs[i].labels);
  }
  return kinds;
}

Tally TallyAll(std::span<const ClipRun> runs, std::size_t setting) {
  Tally all;
  for (const ClipRun& run : runs) all.Add(Judge(run.alarms[setting], run.labels), run.labels);
  return all;
}

}  // namespace stopngo
