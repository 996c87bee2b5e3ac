// clip_passes.cpp: a clip's pictures, gone through once for everything that follows from them.
#include "train/clip_passes.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
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

/// What one pass over a clip's frames is for.
struct Purpose {
  bool evaluation;
  const LooksAtRate* looks;  ///< null: none
};

void AddPass(const Module& module, const Settings& settings, Clip clip, const Purpose& purpose,
             ClipFeatures& features) {
  if (purpose.looks != nullptr) clip.rate = purpose.looks->rate;
  const OpenedClip opened = OpenClip(clip, settings.rate, purpose.looks != nullptr ? kLookShift : 0);
  const SourceInfo& info = opened.frames->Info();
  Viewers viewers;
  for (int filter = 0; purpose.evaluation && filter < kFilters; filter++) {
    Settings watching = Placed(Watching(settings), opened.region, info.width, info.height);
    watching.filter = filter;
    viewers.push_back(std::make_unique<Viewer>(module, watching, info, false, true));
  }
  const auto deciding = static_cast<std::ptrdiff_t>(viewers.size());
  if (purpose.looks != nullptr) {
    for (const Look& look : purpose.looks->looks) {
      const Settings watching = ForLook(settings, opened, look);
      viewers.push_back(std::make_unique<Viewer>(module, watching, info, look.mirrored, false));
    }
  }
  features.labels = opened.labels;
  Pass pass = CollectPass(opened, std::move(viewers));
  const auto looks = std::make_move_iterator(pass.views.begin() + deciding);
  if (purpose.looks != nullptr) {
    features.looks.push_back({pass.fps, pass.times_s, {looks, std::make_move_iterator(pass.views.end())}});
  }
  if (!purpose.evaluation) return;
  pass.views.resize(static_cast<std::size_t>(deciding));
  features.evaluation = std::move(pass);
}

}  // namespace

ClipFeatures CollectFeatures(const Module& module, const Settings& settings, const Clip& clip,
                             const FeatureChoice& choice) {
  ClipFeatures features;
  features.damaged_allowed = clip.allow_damaged && !clip.IsScene();
  features.looks_seed = choice.looks > 1 ? choice.seed + clip.number : 0;
  const std::vector<LooksAtRate> looks = DrawLooks(settings, clip.rate.value_or(settings.rate), choice.looks,
                                                   RandomOf(features.looks_seed, stream::kLooks));
  // A recording gives its whole pictures to both. Of a scene a margin around the region is drawn for looks beside it,
  // and with it other noise.
  const bool together = choice.evaluation && !clip.IsScene() && !looks.empty();
  if (choice.evaluation && !together) AddPass(module, settings, clip, {true, nullptr}, features);
  for (const LooksAtRate& at_rate : looks) {
    AddPass(module, settings, clip, {together && &at_rate == &looks.front(), &at_rate}, features);
  }
  return features;
}

}  // namespace stopngo
