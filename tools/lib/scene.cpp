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
// A vehicle that drives away counts as departing for this long: later it is too small to be told apart
// from one that is merely far.
constexpr double kDepartureLabel_s = 3;

/// Half as many texels again as pixels keep the edges of texels from showing; beyond the limit, which
/// only pictures above 1080 rows reach, memory is worth more than sharpness.
double TexelsPerMetre(const Camera& camera, double distance) {
  return std::min(1.5 * camera.focal / distance, 520.0);
}

/// A window is the picture of a camera whose principal point lies elsewhere.
Camera Windowed(Camera camera, const SceneWindow& window) {
  camera.centre_x -= window.x;
  camera.horizon -= window.y;
  return camera;
}

}  // namespace

struct Scene::Model {
  Model(const SceneOptions& o, const SceneWindow& w)
      : options(o),
        window(w.width == 0 ? SceneWindow{0, 0, o.width, o.height} : w),
        camera(Windowed(MakeCamera(o.width, o.height), window)),
        world(camera.height_m, o.distance_m + kVehicleToLine_m, o.seed),
        backdrop(world, camera, window.width, window.height, static_cast<int>(std::ceil(o.vibration))),
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
  SceneWindow window;
  Camera camera;
  World world;
  Backdrop backdrop;
  Vehicle vehicle;
  Departure departure;
  Shake shake;
  Sensor sensor;
};

Scene::Scene(const SceneOptions& options, const SceneWindow& window)
    : model_(std::make_unique<Model>(options, window)) {}

Scene::~Scene() = default;

std::int64_t Scene::Frames() const {
  return std::max<std::int64_t>(1, std::llround(model_->options.length_s * model_->options.fps));
}

void Scene::Render(std::int64_t frame, std::span<std::uint8_t> luma) const {
  const Model& model = *model_;
  const auto width = static_cast<std::size_t>(model.window.width);
  const Shake::Offset offset = model.shake.At(frame);
  VehicleView vehicle = model.View(static_cast<double>(frame) / model.options.fps, offset);
  std::vector<float> light(width);
  for (int row = 0; row < model.window.height; row++) {
    model.backdrop.Row(row, offset, light);
    vehicle.DrawRow(row, light);
    model.sensor.Expose(light, frame, row, luma.subspan(static_cast<std::size_t>(row) * width, width));
  }
}

std::vector<LabelSpan> Scene::Labels() const {
  const SceneOptions& options = model_->options;
  const double length_s = static_cast<double>(Frames()) / options.fps;
  const double start = std::min(options.departure_s, length_s);
  std::vector<LabelSpan> labels;
  if (start > 0) labels.push_back({0, start, Activity::kStill});
  if (start < length_s)
    labels.push_back({start, std::min(start + kDepartureLabel_s, length_s), Activity::kLeadDeparts});
  return labels;
}

double Scene::Distance(double time_s) const {
  return model_->options.distance_m + model_->departure.Travelled(time_s);
}

SceneRegion Scene::SuggestedRegion() const {
  const Settings defaults;
  const VehicleView view =
      model_->View(0, {static_cast<double>(model_->window.x), static_cast<double>(model_->window.y)});
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
