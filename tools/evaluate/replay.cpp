// replay.cpp: detectors over what is kept of a clip, as if they were given its pictures.
#include "evaluate/replay.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "evaluate/own_speed.h"
#include "features/feature_folder.h"
#include "host/gates/gates.h"

namespace stopngo {
namespace {

// A region of two blocks by two has no block with a margin all around: the module moves on its analysis buffers, finds
// no motion, and leaves its histogram as it is, which was put there before.
constexpr int kBlock = 10;
constexpr int kSide = 2 * kBlock;

Settings WithoutBlocks(Settings settings) {
  settings.block_size = kBlock;
  settings.scale = 0;
  settings.filter = 0;
  settings.gates = 0;  // they are told what the pixels were
  settings.original_size.reset();
  return Placed(std::move(settings), {0, 0, kSide, kSide}, kSide, kSide);
}

Settings WithoutSpeedFile(Settings settings) {
  settings.speed_file.clear();  // tells the speed of now
  return settings;
}

/// One of the frames, and the pair with the one before it.
struct KeptFrame {
  std::size_t frame;
  double time_s;
  std::optional<double> speed;
};

class Replay {
 public:
  Replay(const Module& module, const Settings& settings, const Pass& pass)
      : view_(pass.views[static_cast<std::size_t>(settings.filter)]),
        detector_(module, WithoutBlocks(settings), {kSide, kSide, pass.fps}) {
    if (settings.gates != 0) gates_.emplace(module, WithoutSpeedFile(settings), pass.fps);
    blank_.width = blank_.height = kSide;
    blank_.pixels.resize(std::size_t{kSide} * kSide);
  }

  /// Whether the decision has changed to 1.
  bool Alarms(const KeptFrame& kept) {
    VEL_STOPNGO_CTX& context = detector_.Context();
    if (kept.frame > 0) std::ranges::copy(Histogram(kept.frame), context.MotionChunk);
    if (gates_) {
      if (kept.speed) gates_->SetSpeed(*kept.speed, kept.time_s);
      gates_->Before(kept.time_s, context);
    }
    blank_.index = static_cast<std::int64_t>(kept.frame);
    blank_.time_s = kept.time_s;
    const FrameReport report = detector_.Write(blank_);
    if (gates_) gates_->After(Shown(kept.frame, report));
    return report.changed && report.decision == 1;
  }

 private:
  [[nodiscard]] std::span<const std::int8_t> Histogram(std::size_t frame) const {
    return std::span(view_.histograms).subspan((frame - 1) * kChunkCapacity, kChunkCapacity);
  }

  [[nodiscard]] GateFrame Shown(std::size_t frame, const FrameReport& report) const {
    GateFrame shown{.time_s = report.time_s, .decided = report.decided, .histogram = {}};
    shown.decision = report.decision;
    shown.score = report.score;
    shown.luma = view_.pixels[frame].luma;
    shown.repeated = view_.pixels[frame].repeated;
    if (!report.analysed) return shown;
    constexpr std::size_t kEntriesACell = 4;
    shown.histogram = Histogram(frame).first(kEntriesACell * view_.columns * view_.rows);
    shown.columns = view_.columns;
    return shown;
  }

  const View& view_;
  Detector detector_;
  std::optional<Gates> gates_;
  LumaFrame blank_;
};

/// What the front settings' detector would have been asked for besides its decisions.
void AddFigures(const RunOptions& options, const Pass& pass, ClipRun& run) {
  const Settings& settings = options.settings.front();
  const View& view = pass.views[static_cast<std::size_t>(settings.filter)];
  for (std::size_t pair = 0; pair < view.Pairs(); ++pair) {
    const double time_s = pass.times_s[pair + 1];
    if (options.signals) {
      run.signals.push_back({time_s, view.signals[pair].difference, view.signals[pair].flow});
    }
    if (!options.motion) continue;
    const auto histogram = std::span(view.histograms).subspan(pair * kChunkCapacity, kChunkCapacity);
    run.motion.push_back(ReadPairFigures(time_s, histogram, static_cast<std::size_t>(settings.features)));
  }
}

}  // namespace

ClipRun ReplayClip(const Module& module, const RunOptions& options, const Clip& clip) {
  const ClipFeatures features = options.features->Find(clip, options.settings.front(), {.evaluation = true});
  const Pass& pass = *features.evaluation;
  ClipRun run;
  run.labels = features.labels;
  run.fps = pass.fps;
  CheckEnd(run.labels, pass.fps, pass.times_s.empty() ? 0 : pass.times_s.back());
  for (const Settings& settings : options.settings) {
    Replay replay(module, settings, pass);
    std::vector<double> alarms_s;
    for (std::size_t frame = 0; frame < pass.times_s.size(); ++frame) {
      const double time_s = pass.times_s[frame];
      if (replay.Alarms({frame, time_s, OwnSpeed(run.labels, time_s)})) alarms_s.push_back(time_s);
    }
    run.events.push_back(Judge(alarms_s, run.labels));
  }
  AddFigures(options, pass, run);
  return run;
}

}  // namespace stopngo
