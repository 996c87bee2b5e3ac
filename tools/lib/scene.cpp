// scene.cpp: a scene as others see it.
#include "scene.h"

#include <algorithm>
#include <cmath>

#include "scene_model.h"

namespace stopngo {

Scene::Scene(const SceneOptions& options, const SceneWindow& window)
    : model_(std::make_unique<Model>(options, window)) {}

Scene::~Scene() = default;

std::int64_t Scene::Frames() const {
  return std::max<std::int64_t>(1, std::llround(model_->options.length_s * model_->options.fps));
}

void Scene::Render(std::int64_t frame, std::span<std::uint8_t> luma) const { model_->Render(frame, luma); }

std::vector<LabelSpan> Scene::Labels() const {
  return model_->Labels(static_cast<double>(Frames()) / model_->options.fps);
}

double Scene::Distance(double time_s) const {
  return model_->options.lead_present ? model_->lane.front().At(time_s).z : 0;
}

SceneRegion Scene::SuggestedRegion() const { return model_->Region(); }

}  // namespace stopngo
