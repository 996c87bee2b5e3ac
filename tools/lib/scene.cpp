// scene.cpp: a scene as others see it.
#include "scene.h"

#include <algorithm>
#include <cmath>

#include "scene_lane.h"
#include "scene_model.h"
#include "scene_path.h"
#include "settings.h"

namespace stopngo {
namespace {

/// When the region is placed: at the beginning, or, when we are still under way then, when we have come
/// nearest to the vehicle ahead.
double NearestTime(const SceneOptions& options, const LaneVehicle& lead) {
  if (options.ego.speed == 0) return 0;
  constexpr double kStep_s = 0.25;
  const EgoPath path(options.ego, options.ego_turning, options.length_s);
  double nearest = 1e9;
  double at_s = 0;
  for (int i = 0; i * kStep_s < options.length_s; i++) {
    const double time_s = i * kStep_s;
    Camera camera;
    path.Place(camera, time_s);
    const VehicleState state = lead.At(time_s);
    const double ahead = PlaceOf(camera, state.x, state.z).ahead;
    if (ahead < nearest) {
      nearest = ahead;
      at_s = time_s;
    }
  }
  return at_s;
}

}  // namespace

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

SceneRegion Scene::SuggestedRegion() const { return stopngo::SuggestedRegion(model_->options); }

SceneRegion SuggestedRegion(const SceneOptions& options) {
  const Settings defaults;
  SceneRegion region{defaults.roi_x, defaults.roi_y, defaults.roi_width, defaults.roi_height};
  if (options.lead_present) {
    // Few texels do: all that counts is how high and wide the vehicle is.
    const LaneVehicle lead(options.lead, 4, 1e4, options.seed);
    const double time_s = NearestTime(options, lead);
    Camera camera = WaitingCamera(options);
    EgoPath(options.ego, options.ego_turning, options.length_s).Place(camera, time_s);
    const VehicleView view(lead.Look(), camera, lead.At(time_s), options.light);
    const double across = static_cast<double>(defaults.input_width) / options.width;
    const double down = static_cast<double>(defaults.input_height) / options.height;
    // Keeps a stretch where it is when it lies between the limits, else takes it to a share of their way.
    const auto place = [&options](int at, int length, double low, double high, double share) {
      if (!options.region.aimed && at >= low && at + length <= high) {
        return at;
      }
      return static_cast<int>(std::lround(low + (high - low) * share)) - length / 2;
    };
    region.x = place(region.x, region.width, view.Left() * across, view.Right() * across,
                     0.5 + options.region.across);
    region.y = place(region.y, region.height, view.Top() * down, view.Bottom() * down,
                     options.region.aimed ? 1 - options.region.up : 0.5);
  }
  region.x = std::clamp(region.x + options.region.shift_x, 0, defaults.input_width - region.width);
  region.y = std::clamp(region.y + options.region.shift_y, 0, defaults.input_height - region.height);
  return region;
}

}  // namespace stopngo
