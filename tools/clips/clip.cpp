// clip.cpp: opens labelled clips, recorded or rendered.
#include "clips/clip.h"

#include <algorithm>
#include <mutex>

#include "clips/scene_source.h"
#include "host/common/text.h"
#include "host/settings/settings.h"
#include "video/damage.h"
#include "video/open_source.h"

namespace stopngo {
namespace {

OpenedClip OpenRecording(const Clip& clip, double rate) {
  // FFmpeg's registers of formats and devices are filled on opening.
  static std::mutex opening;
  const std::lock_guard lock(opening);
  SourceOptions options;
  options.input = std::get<std::string>(clip.source);
  options.width = kPictureWidth;
  options.height = kPictureHeight;
  options.rate = rate;
  options.hear = DamageRule(DamageRule::Kind::kAtOnce, clip.allow_damaged);
  return {OpenSource(options), Moved(clip.region.value_or(RegionOf(Settings())), clip.moved), clip.labels};
}

/// A region with a margin around it, as far as the picture goes.
SceneWindow Around(const Region& region, int margin) {
  const int left = std::max(0, region.x - margin);
  const int top = std::max(0, region.y - margin);
  const int right = std::min(kPictureWidth, region.x + region.width + margin);
  const int bottom = std::min(kPictureHeight, region.y + region.height + margin);
  return {left, top, right - left, bottom - top};
}

OpenedClip OpenScene(const Clip& clip, double rate, int margin) {
  const auto& drawn = std::get<DrawnScene>(clip.source);
  SceneOptions options = DrawScene(drawn.kind, drawn.seed);
  options.width = kPictureWidth;
  options.height = kPictureHeight;
  const Region region = Moved(clip.region ? *clip.region : SuggestedRegion(options), clip.moved);
  const SceneWindow window = Around(region, margin);
  SceneFrames scene = OpenSceneFrames(clip.name, options, window, std::min(rate, options.fps));
  return {std::move(scene.frames),
          {region.x - window.x, region.y - window.y, region.width, region.height},
          std::move(scene.labels)};
}

}  // namespace

OpenedClip OpenClip(const Clip& clip, double rate, int margin) {
  const double handed_over = clip.rate.value_or(rate);
  return clip.IsScene() ? OpenScene(clip, handed_over, margin) : OpenRecording(clip, handed_over);
}

std::vector<LabelSpan> LabelsOf(const Clip& clip) {
  return clip.IsScene() ? OpenScene(clip, 1, 0).labels : clip.labels;
}

void CheckEnd(const OpenedClip& clip, double last_s) {
  CheckEnd(clip.labels, clip.frames->Info().fps, last_s);
}

void CheckEnd(const std::vector<LabelSpan>& labels, double fps, double last_s) {
  constexpr double kRounding_s = 1;  // of times that people write
  if (labels.empty()) return;
  const double end_s = last_s + 1 / fps;
  const double labelled_s = labels.back().end_s;
  if (labelled_s <= end_s + kRounding_s) return;
  throw Failure(Print("the last label ends at %.6g s, the clip at %.6g s", labelled_s, end_s));
}

Failure NamingClip(const Clip& clip, const Failure& failure) {
  const std::string reason = failure.what();
  const bool named = reason.find(clip.name) != std::string::npos;
  return Failure(named ? reason : clip.name + ": " + reason, failure.Code());
}

}  // namespace stopngo
