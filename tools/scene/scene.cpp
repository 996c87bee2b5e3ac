// scene.cpp: a scene as others see it.
#include "scene/scene.h"

#include <algorithm>
#include <cmath>

#include "scene/model.h"

namespace stopngo {

Scene::Scene(const SceneOptions& options, const SceneWindow& window)
    : model_(std::make_unique<SceneModel>(options, window)) {}

Scene::~Scene() = default;

std::int64_t Scene::Frames() const {
  return std::max<std::int64_t>(1, std::llround(model_->options.length_s * model_->options.fps));
}

void Scene::Render(std::int64_t frame, std::span<std::uint8_t> luma) { model_->Render(frame, luma); }

std::vector<LabelSpan> Scene::Labels() const {
  return model_->Labels(static_cast<double>(Frames()) / model_->options.fps);
}

}  // namespace stopngo
