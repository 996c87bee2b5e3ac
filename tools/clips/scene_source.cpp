// scene_source.cpp: frames straight from a scene, without a file between.
#include "clips/scene_source.h"

#include <cmath>
#include <utility>

#include "scene/scene.h"

namespace stopngo {
namespace {

/// The frame nearest to a time; of two that are equally near the earlier, as with recordings.
std::int64_t Nearest(double time_s, double fps) {
  constexpr double kTie = 1e-6;  // frames
  return static_cast<std::int64_t>(std::ceil(time_s * fps - 0.5 - kTie));
}

class SceneSource : public FrameSource {
 public:
  SceneSource(const std::string& name, const SceneOptions& options, const SceneWindow& window, double rate)
      : scene_(options, window), fps_(options.fps), rate_(rate > 0 ? rate : options.fps) {
    info_.width = window.width;
    info_.height = window.height;
    info_.fps = rate_;
    info_.description = name;
    std::int64_t count = 0;
    while (FrameAt(count) < scene_.Frames()) ++count;
    info_.frames = count;
  }

  [[nodiscard]] std::vector<LabelSpan> Labels() const { return scene_.Labels(); }

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    if (slot_ == info_.frames) return false;
    frame.width = info_.width;
    frame.height = info_.height;
    frame.index = FrameAt(slot_);
    frame.time_s = static_cast<double>(frame.index) / fps_;
    frame.pixels.resize(static_cast<std::size_t>(info_.width) * static_cast<std::size_t>(info_.height));
    scene_.Render(frame.index, frame.pixels);
    ++slot_;
    return true;
  }

 private:
  [[nodiscard]] std::int64_t FrameAt(std::int64_t slot) const {
    return Nearest(static_cast<double>(slot) / rate_, fps_);
  }

  Scene scene_;
  double fps_;  ///< of the scene
  double rate_;
  SourceInfo info_;
  std::int64_t slot_ = 0;
};

}  // namespace

SceneFrames OpenSceneFrames(const std::string& name, const SceneOptions& options, const SceneWindow& window,
                            double rate) {
  auto source = std::make_unique<SceneSource>(name, options, window, rate);
  std::vector<LabelSpan> labels = source->Labels();
  return {std::move(source), std::move(labels)};
}

}  // namespace stopngo
