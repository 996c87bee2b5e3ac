// setting.cpp: drawing the setting of a scene: light, street, camera, sensor, the vehicle ahead.
#include "scene/script/setting.h"

#include <algorithm>
#include <array>

#include "base/random.h"
#include "scene/recipe/chance.h"
#include "scene/recipe/kinds.h"
#include "scene/recipe/light.h"

namespace stopngo {
namespace {

constexpr double kLeastWidth_px = 130;  // of a rear in 800 columns: a smaller one nobody would watch

void DrawLight(SceneOptions& scene, Random& random) {
  Light& light = scene.light;
  const auto number = [&random](double low, double high) { return UniformFloat(random, low, high); };
  const double time = random.Uniform(0, 1);
  const bool wet = Chance(random, 0.3);
  if (time < 0.6) {
    light.ambient = number(0.8, 1.1);
  } else if (time < 0.78) {
    light.ambient = number(0.38, 0.7);
    light.headlamps = number(0, 0.2);
    light.windows = number(0.1, 0.4);
  } else {
    light.ambient = number(0.08, 0.28);
    light.headlamps = number(0.3, 0.75);
    light.street = number(-0.1, 0.35);
    light.windows = number(0.05, 0.35);
  }
  light.street = std::max(light.street, 0.0F);
  light.wet = wet ? number(0.3, 1) : 0.0F;
}

void DrawWorld(SceneOptions& scene, Random& random) {
  using Style = WorldOptions::Style;
  constexpr std::array<Style, 10> kStyles{Style::kStreet,   Style::kStreet, Style::kStreet, Style::kStreet,
                                          Style::kStreet,   Style::kOpen,   Style::kOpen,   Style::kWall,
                                          Style::kMotorway, Style::kTunnel};
  scene.world.style = OneOf(kStyles, random);
  scene.world.street_end_m = LogUniform(random, 40, 150);
  scene.world.contrast = random.Uniform(0.6, 1.4);
  scene.world.brightness = random.Uniform(-25, 25);
}

void DrawCamera(SceneOptions& scene, Random& random) {
  CameraOptions& camera = scene.camera;
  camera.height_m = Chance(random, 0.2) ? random.Uniform(1.6, 2.2) : random.Uniform(1.1, 1.5);
  camera.focal = LogUniform(random, 0.46, 1.08);  // 95 to 50 degrees of view
  camera.horizon = random.Uniform(0.40, 0.58);
  // Some engines stop at the lights.
  camera.vibration = Chance(random, 0.3) ? random.Uniform(0, 0.05) : LogUniform(random, 0.08, 0.9);
  camera.gusts = Chance(random, 0.2) ? random.Uniform(0.1, 0.8) : 0;
  camera.drift = Chance(random, 0.3) ? random.Uniform(0.2, 2) : 0;
  camera.road_shake = LogUniform(random, 0.4, 4);
  scene.windscreen.bonnet = Chance(random, 0.3) ? random.Uniform(0.03, 0.13) : 0;
  scene.windscreen.reflections = Chance(random, 0.35) ? random.Uniform(3, 45) : 0;
  scene.windscreen.dirt = Chance(random, 0.35) ? random.Uniform(0.05, 0.4) : 0;
}

void DrawSensor(SceneOptions& scene, Random& random) {
  SensorOptions& sensor = scene.sensor;
  const auto ambient = static_cast<double>(scene.light.ambient);
  const double dark = std::clamp(1.2 - ambient, 0.2, 1.1);
  sensor.noise = LogUniform(random, 0.3, 2.4) * (1 + 1.4 * dark);
  sensor.noise = std::min(sensor.noise, 6.0);
  sensor.contrast = random.Uniform(0.7, 1.35);
  sensor.gain = random.Uniform(0.75, 1.25);
  if (ambient < 0.6) sensor.gain *= random.Uniform(1, 1.7);
  sensor.blur = Chance(random, 0.6) ? random.Uniform(0.03, 0.24) : 0;
  sensor.vignette = Chance(random, 0.5) ? random.Uniform(0.05, 0.35) : 0;
  sensor.shutter_s = dark > 0.6 ? random.Uniform(0.012, 0.033) : LogUniform(random, 0.001, 0.015);
  sensor.compression = Chance(random, 0.25) ? 0 : random.Uniform(0.03, 1);
  sensor.refresh_s = LogUniform(random, 0.5, 10);
  sensor.source_fps = Chance(random, 0.12) ? random.Uniform(10, 20) : 0;
  if (Chance(random, 0.3)) {  // exposure that never quite settles
    const double start_s = random.Uniform(0, scene.length_s - 4);
    const double ramp_s = random.Uniform(2, 6);
    sensor.exposure.push_back({start_s, ramp_s, random.Uniform(0.92, 1.08)});
  }
}

VehicleKind DrawKind(Random& random) {
  constexpr std::array<VehicleKind, 20> kKinds{
      VehicleKind::kHatchback, VehicleKind::kHatchback, VehicleKind::kHatchback,   VehicleKind::kHatchback,
      VehicleKind::kHatchback, VehicleKind::kSaloon,    VehicleKind::kSaloon,      VehicleKind::kSaloon,
      VehicleKind::kSaloon,    VehicleKind::kMinivan,   VehicleKind::kMinivan,     VehicleKind::kOffRoad,
      VehicleKind::kOffRoad,   VehicleKind::kOffRoad,   VehicleKind::kTransporter, VehicleKind::kTransporter,
      VehicleKind::kLorry,     VehicleKind::kLorry,     VehicleKind::kBus,         VehicleKind::kMotorcycle};
  return OneOf(kKinds, random);
}

/// A vehicle that waits, at no place yet.
VehicleOptions DrawVehicle(const SceneOptions& scene, Random& random) {
  VehicleOptions vehicle;
  vehicle.kind = DrawKind(random);
  const double shade = random.Uniform(0, 1);
  vehicle.tone = shade < 0.3 ? random.Uniform(17, 45)
                             : (shade < 0.75 ? random.Uniform(45, 165) : random.Uniform(165, 228));
  vehicle.dirt = LogUniform(random, 0.4, 8);
  vehicle.tail_lamps = static_cast<double>(scene.light.ambient) < 0.75;
  LeaveAt(vehicle, 1e6, 1);
  vehicle.braking = Chance(random, 0.75);
  vehicle.brake_switches_s.clear();
  return vehicle;
}

void DrawLead(SceneOptions& scene, Random& random) {
  VehicleOptions& lead = scene.lead;
  lead = DrawVehicle(scene, random);
  const bool narrow = lead.kind == VehicleKind::kMotorcycle;
  const double width_m = narrow ? 0.8 : 1.8;
  const double farthest = width_m * scene.camera.focal * 800 / (narrow ? 80 : kLeastWidth_px);
  lead.distance_m = LogUniform(random, 3, std::clamp(farthest, 4.0, 12.0));
  const double offset = Chance(random, 0.2) ? 0.9 : 0.4;
  lead.offset_m = random.Uniform(-offset, offset);
  if (Chance(random, 0.12)) {
    lead.indicator = Chance(random, 0.5) ? Indicator::kLeft : Indicator::kRight;
  }
}

/// On the lower edge with wheels and road, on the middle of the body, or near the roof; seldom quite
/// where it should be.
void DrawRegion(SceneOptions& scene, Random& random) {
  RegionOptions& region = scene.region;
  region.aimed = Chance(random, 0.75);
  region.across = random.Uniform(-0.2, 0.2);
  const double where = random.Uniform(0, 1);
  region.up = where < 0.4 ? random.Uniform(0.1, 0.3) : random.Uniform(0.3, where < 0.85 ? 0.55 : 0.75);
  region.shift_x = static_cast<int>(random.Below(31)) - 15;
  region.shift_y = static_cast<int>(random.Below(31)) - 15;
}

}  // namespace

void DrawSetting(SceneOptions& scene, Random& random) {
  scene.length_s = random.Uniform(10, 20);
  DrawLight(scene, random);
  DrawWorld(scene, random);
  DrawCamera(scene, random);
  DrawSensor(scene, random);
  DrawLead(scene, random);
  DrawRegion(scene, random);
  if (Chance(random, 0.45)) {
    AddQueue(scene, random);
  }
  if (Chance(random, 0.4)) {
    scene.actors.push_back({ActorKind::kNeighbour, random.Next(), 0});
  }
  if (Chance(random, 0.25)) {
    scene.actors.push_back({ActorKind::kBystanders, random.Next(), 0});
  }
}

void AddQueue(SceneOptions& scene, Random& random) {
  if (!scene.others.empty()) {
    return;
  }
  VehicleOptions ahead = DrawVehicle(scene, random);
  const bool narrow = scene.lead.kind == VehicleKind::kMotorcycle;
  ahead.distance_m = scene.lead.distance_m + (narrow ? 2.2 : 4.6) + random.Uniform(0.8, 4);
  ahead.offset_m = scene.lead.offset_m + random.Uniform(-0.5, 0.5);
  scene.others.push_back(ahead);
}

}  // namespace stopngo
