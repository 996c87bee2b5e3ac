// clip_passes.cpp: a clip's pictures, gone through once for everything that follows from them.
#include "train/clip_passes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "base/streams.h"
#include "evaluate/baseline.h"
#include "evaluate/evaluation.h"
#include "host/detector.h"
#include "train/looks.h"

namespace stopngo {
namespace {

/// The numbers of the module's filters are those of an evaluation's views.
constexpr int kFilters = 3;

/// A detector that fills a view.
class Viewer {
 public:
  /// decides: the view is to be one that decisions can follow from.
  Viewer(const Module& module, const Settings& settings, const FrameFormat& frames, bool mirrored,
         bool decides)
      : detector_(module, settings, frames), mirrored_(mirrored), decides_(decides) {
    view_.columns = static_cast<std::uint8_t>(detector_.Context().SumX);
    view_.rows = static_cast<std::uint8_t>(detector_.Context().SumY);
  }

  void Take(LumaFrame& frame, LumaFrame& mirrored) {
    const FrameReport report = detector_.Write(mirrored_ ? mirrored : frame);
    const VEL_STOPNGO_CTX& context = detector_.Context();
    if (decides_) view_.pixels.push_back(ReadPixels(context));
    if (!report.analysed) return;
    view_.histograms.insert(view_.histograms.end(), context.MotionChunk,
                            context.MotionChunk + kChunkCapacity);
    if (!decides_) return;
    const FrameSignals signals = ReadSignals(frame.time_s, context);
    view_.signals.push_back({signals.difference, signals.flow});
  }
  View Finish() { return std::move(view_); }

 private:
  Detector detector_;
  bool mirrored_, decides_;
  View view_;
};

using Viewers = std::vector<std::unique_ptr<Viewer>>;

/// One pass over a clip's frames.
Pass CollectPass(const OpenedClip& opened, Viewers viewers) {
  Pass pass{.fps = opened.frames->Info().fps, .times_s = {}, .views = {}};
  for (LumaFrame frame; opened.frames->Next(frame);) {
    pass.times_s.push_back(frame.time_s);
    LumaFrame mirrored = frame;
    Mirror(mirrored);
    for (const auto& viewer : viewers) viewer->Take(frame, mirrored);
  }
  CheckEnd(opened, pass.times_s.empty() ? 0 : pass.times_s.back());
  pass.views.reserve(viewers.size());
  for (const auto& viewer : viewers) pass.views.push_back(viewer->Finish());
  return pass;
}

/// Of the frames that an evaluation sees.
void AddEvaluation(const Module& module, const Settings& settings, const Clip& clip, ClipFeatures& features) {
  const OpenedClip opened = OpenClip(clip, settings.rate, 0);
  const SourceInfo& info = opened.frames->Info();
  Viewers viewers;
  for (int filter = 0; filter < kFilters; filter++) {
    Settings watching = Placed(Watching(settings), opened.region, info.width, info.height);
    watching.filter = filter;
    viewers.push_back(std::make_unique<Viewer>(module, watching, info, false, true));
  }
  features.labels = opened.labels;
  features.evaluation = CollectPass(opened, std::move(viewers));
}

void AddLooks(const Module& module, const Settings& settings, Clip clip, const LooksAtRate& at_rate,
              ClipFeatures& features) {
  clip.rate = at_rate.rate;
  const OpenedClip opened = OpenClip(clip, 0, kLookShift);
  Viewers viewers;
  for (const Look& look : at_rate.looks) {
    viewers.push_back(std::make_unique<Viewer>(module, ForLook(settings, opened, look), opened.frames->Info(),
                                               look.mirrored, false));
  }
  features.labels = opened.labels;
  features.looks.push_back(CollectPass(opened, std::move(viewers)));
}

}  // namespace

ClipFeatures CollectFeatures(const Module& module, const Settings& settings, const Clip& clip,
                             const FeatureChoice& choice) {
  ClipFeatures features;
  features.damaged_allowed = clip.allow_damaged && !clip.IsScene();
  features.looks_seed = choice.looks > 1 ? choice.seed + clip.number : 0;
  if (choice.evaluation) AddEvaluation(module, settings, clip, features);
  const double rate = clip.rate.value_or(settings.rate);
  for (const LooksAtRate& at_rate :
       DrawLooks(settings, rate, choice.looks, RandomOf(features.looks_seed, stream::kLooks))) {
    AddLooks(module, settings, clip, at_rate, features);
  }
  return features;
}

}  // namespace stopngo
