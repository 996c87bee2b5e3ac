// scene.cpp: a scene put together: backdrop, vehicle, shake, sensor.
#include "scene.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "scene_backdrop.h"
#include "scene_camera.h"
#include "scene_motion.h"
#include "scene_sensor.h"
#include "scene_vehicle.h"
#include "scene_world.h"
#include "settings.h"

namespace stopngo {
namespace {

constexpr double kVehicleToLine_m = 5.4;  // from its rear: a car's length and a metre
constexpr double kBrakesOff_s = 0.4;      // the foot leaves the brake before the vehicle moves
constexpr double kLampFade_s = 0.12;

/// Half as many texels again as pixels keep the edges of texels from showing; beyond the limit, which
/// only pictures above 1080 rows reach, memory is worth more than sharpness.
double TexelsPerMetre(const Camera& camera, double distance) {
  return std::min(1.5 * camera.focal / distance, 520.0);
}

}  // namespace

struct Scene::Model {
  explicit Model(const SceneOptions& o)
      : options(o),
        camera(MakeCamera(o.width, o.height)),
        world(camera.height_m, o.distance_m + kVehicleToLine_m, o.seed),
        backdrop(world, camera, o.width, o.height, static_cast<int>(std::ceil(o.vibration))),
        vehicle(BuildVehicle(TexelsPerMetre(camera, o.distance_m), o.seed)),
        departure(o.departure_s, o.acceleration),
        shake(o.vibration, o.fps, o.seed),
        sensor(o.noise, o.seed) {}

  [[nodiscard]] VehicleView View(double time_s, Shake::Offset offset) const {
    const double off = (time_s - (options.departure_s - kBrakesOff_s)) / kLampFade_s;
    const double brakes = options.departure_s < options.length_s ? 1 - std::clamp(off, 0.0, 1.0) : 1.0;
    return {vehicle, camera, options.distance_m + departure.Travelled(time_s), offset, brakes};
  }

  SceneOptions options;
  Camera camera;
  World world;
  Backdrop backdrop;
  Vehicle vehicle;
  Departure departure;
  Shake shake;
  Sensor sensor;
};

Scene::Scene(const SceneOptions& options) : model_(std::make_unique<Model>(options)) {}

Scene::~Scene() = default;

std::int64_t Scene::Frames() const {
  return std::max<std::int64_t>(1, std::llround(model_->options.length_s * model_->options.fps));
}

void Scene::Render(std::int64_t frame, std::span<std::uint8_t> luma) const {
  const Model& model = *model_;
  const auto width = static_cast<std::size_t>(model.options.width);
  const Shake::Offset offset = model.shake.At(frame);
  VehicleView vehicle = model.View(static_cast<double>(frame) / model.options.fps, offset);
  std::vector<float> light(width);
  for (int row = 0; row < model.options.height; row++) {
    model.backdrop.Row(row, offset, light);
    vehicle.DrawRow(row, light);
    model.sensor.Expose(light, frame, row, luma.subspan(static_cast<std::size_t>(row) * width, width));
  }
}

double Scene::Distance(double time_s) const {
  return model_->options.distance_m + model_->departure.Travelled(time_s);
}

SceneRegion Scene::SuggestedRegion() const {
  const Settings defaults;
  const VehicleView view = model_->View(0, {0, 0});
  const double across = static_cast<double>(defaults.input_width) / model_->options.width;
  const double down = static_cast<double>(defaults.input_height) / model_->options.height;
  // Keeps a stretch where it is when it lies between the limits, else takes it to their middle.
  const auto place = [](int at, int length, double low, double high, int picture) {
    if (at >= low && at + length <= high) {
      return at;
    }
    const auto middle = static_cast<int>(std::lround(0.5 * (low + high)));
    return std::clamp(middle - length / 2, 0, picture - length);
  };
  return {place(defaults.roi_x, defaults.roi_width, view.Left() * across, view.Right() * across,
                defaults.input_width),
          place(defaults.roi_y, defaults.roi_height, view.Top() * down, view.Bottom() * down,
                defaults.input_height),
          defaults.roi_width, defaults.roi_height};
}

}  // namespace stopngo
