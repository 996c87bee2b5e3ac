// scene_source.cpp: frames straight from a scene, without a file between.
#include "clips/scene_source.h"

#include <cmath>
#include <utility>

namespace stopngo {
namespace {

/// The frame nearest to a time; of two that are equally near the earlier, as with recordings.
std::int64_t Nearest(double time_s, double fps) {
  constexpr double kTie = 1e-6;  // frames
  return static_cast<std::int64_t>(std::ceil(time_s * fps - 0.5 - kTie));
}

class SceneSource : public FrameSource {
 public:
  explicit SceneSource(SceneFrames frames)
      : frames_(std::move(frames)), rate_(frames_.rate > 0 ? frames_.rate : frames_.fps) {
    info_.width = frames_.width;
    info_.height = frames_.height;
    info_.fps = rate_;
    info_.description = frames_.name;
    std::int64_t count = 0;
    while (FrameAt(count) < frames_.scene->Frames()) ++count;
    info_.frames = count;
  }

  [[nodiscard]] const SourceInfo& Info() const override { return info_; }

  bool Next(LumaFrame& frame) override {
    if (slot_ == info_.frames) return false;
    frame.width = frames_.width;
    frame.height = frames_.height;
    frame.index = FrameAt(slot_);
    frame.time_s = static_cast<double>(frame.index) / frames_.fps;
    frame.pixels.resize(static_cast<std::size_t>(frames_.width) * static_cast<std::size_t>(frames_.height));
    frames_.scene->Render(frame.index, frame.pixels);
    ++slot_;
    return true;
  }

 private:
  [[nodiscard]] std::int64_t FrameAt(std::int64_t slot) const {
    return Nearest(static_cast<double>(slot) / rate_, frames_.fps);
  }

  SceneFrames frames_;
  double rate_;
  SourceInfo info_;
  std::int64_t slot_ = 0;
};

}  // namespace

std::unique_ptr<FrameSource> OpenSceneFrames(SceneFrames frames) {
  return std::make_unique<SceneSource>(std::move(frames));
}

}  // namespace stopngo
