// setting.cpp: drawing the setting of a scene: light, street, camera, sensor, the vehicle ahead.
#include "scene/script/setting.h"

#include <algorithm>
#include <array>

#include "base/random.h"
#include "scene/recipe/chance.h"
#include "scene/recipe/kinds.h"
#include "scene/recipe/light.h"
#include "scene/script/distributions.h"

namespace stopngo {
namespace {

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

/// What it is held by decides how its picture sways.
void DrawMount(CameraOptions& camera, Random& random) {
  const double mount = random.Uniform(0, 1);
  // Some engines stop at the lights.
  camera.vibration = Chance(random, draw::kEngineOff) ? Draw(draw::kEngineOff_px, random)
                                                      : DrawLog(draw::kIdling_px, random);
  camera.drift = Chance(random, 0.2) ? random.Uniform(0.2, 2) : 0;
  if (mount < draw::kInCar) return;
  if (mount < draw::kInCar + draw::kInHand) {
    camera.hand = DrawLog(draw::kHand_px, random);
  } else {
    camera.gusts = DrawLog(draw::kPost_px, random);
  }
}

void DrawCamera(SceneOptions& scene, Random& random) {
  CameraOptions& camera = scene.camera;
  camera.height_m = Chance(random, 0.2) ? random.Uniform(1.6, 2.2) : random.Uniform(1.1, 1.5);
  camera.focal = DrawLog(draw::kFocal, random);
  camera.horizon = Draw(draw::kHorizon, random);
  camera.yaw = Draw(draw::kYaw.Both(), random);
  DrawMount(camera, random);
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
  // Automatic exposure makes up for most of what is lacking.
  if (ambient < 0.8) sensor.gain *= std::min(2.0, 1 / ambient) * random.Uniform(0.75, 1);
  sensor.blur = Chance(random, 0.6) ? random.Uniform(0.03, 0.24) : 0;
  sensor.vignette = Chance(random, 0.5) ? random.Uniform(0.05, 0.35) : 0;
  sensor.shutter_s = dark > 0.6 ? random.Uniform(0.012, 0.033) : LogUniform(random, 0.001, 0.015);
  sensor.compression = Chance(random, draw::kUncoded) ? 0 : Draw(draw::kCompression, random);
  sensor.refresh_s = DrawLog(draw::kRefresh_s, random);
  sensor.source_fps = Chance(random, 0.12) ? random.Uniform(10, 20) : 0;
  if (Chance(random, draw::kExposureDrifts)) {  // it never quite settles
    const double start_s = random.Uniform(0, scene.length_s - 4);
    const double ramp_s = random.Uniform(2, 6);
    sensor.exposure.push_back({start_s, ramp_s, random.Uniform(0.92, 1.08)});
  }
  if (Chance(random, draw::kWhiteBalanceSteps)) {
    for (std::uint32_t left = 1 + random.Below(3); left > 0; left--) {
      const double start_s = random.Uniform(0.5, scene.length_s - 1);
      sensor.exposure.push_back({start_s, random.Uniform(0.05, 0.4), Draw(draw::kExposureStep, random)});
    }
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
  vehicle.dirt = LogUniform(random, 0.4, 8);
  vehicle.tail_lamps = static_cast<double>(scene.light.ambient) < 0.75;
  LeaveAt(vehicle, 1e6, 1);
  vehicle.braking = Chance(random, 0.75);
  vehicle.brake_switches_s.clear();
  return vehicle;
}

constexpr double kColumns = 800;  // that widths in pixels are of

/// How far ahead a vehicle of so many metres stands; for a small one also the lens that makes it so.
void DrawDistance(SceneOptions& scene, double width_m, Random& random) {
  CameraOptions& camera = scene.camera;
  const bool large = Chance(random, draw::kLargeLead);
  // Large ones in even shares, of small ones each size as often as its double.
  const double width_px = large ? random.Uniform(draw::kLargeWidth_px, draw::kLeadWidth_px.high)
                                : LogUniform(random, draw::kLeadWidth_px.low, draw::kLargeWidth_px);
  if (!large && Chance(random, draw::kWideLens)) {
    const double focal = width_px * Draw(draw::kQueue_m, random) / width_m / kColumns;
    camera.focal = std::clamp(focal, draw::kWidestFocal, draw::kFocal.high);
  }
  const double metre_px = camera.focal * kColumns;  // at a distance of 1 m
  // Whoever waits there sees its bumper.
  const double below_px = 475 - 480 * camera.horizon;
  const double nearest = (camera.height_m - draw::kBumper_m) * metre_px / below_px;
  scene.lead.distance_m =
      std::clamp(width_m * metre_px / width_px, std::max(draw::kLeadDistance_m.low, nearest),
                 std::max(draw::kLeadDistance_m.high, nearest));
}

/// Where it stands: how far ahead, how far to a side, and at what angle.
void PlaceLead(SceneOptions& scene, Random& random) {
  VehicleOptions& lead = scene.lead;
  const double width_m = lead.kind == VehicleKind::kMotorcycle ? 0.8 : 1.8;
  DrawDistance(scene, width_m, random);
  const double metre_px = scene.camera.focal * kColumns;
  const double where = random.Uniform(0, 1);
  const Range aside = where < draw::kInLine       ? draw::kInLine_m
                      : where < 1 - draw::kBeside ? draw::kTrack_m
                                                  : draw::kBeside_m;
  lead.offset_m = DrawAside(aside, random);
  // Where a camera that looks aside still sees it.
  const double axis = scene.camera.yaw * 6.28 * lead.distance_m;
  const double in_picture = draw::kPictureHalf_px - 0.35 * width_m * metre_px / lead.distance_m;
  const double reach = std::max(0.0, in_picture) / metre_px * lead.distance_m;
  lead.offset_m = std::clamp(lead.offset_m, axis - reach, axis + reach);
  if (Chance(random, draw::kOblique)) lead.heading = DrawAside(draw::kHeading, random);
}

void DrawLead(SceneOptions& scene, Random& random) {
  VehicleOptions& lead = scene.lead;
  lead = DrawVehicle(scene, random);
  PlaceLead(scene, random);
  if (Chance(random, 0.12)) {
    lead.indicator = Chance(random, 0.5) ? Indicator::kLeft : Indicator::kRight;
  }
}

/// Pixels either way.
int Within(int most, Random& random) {
  return static_cast<int>(random.Below(static_cast<std::uint32_t>(2 * most + 1))) - most;
}

/// On the lower edge with wheels and road, on the middle of the body, or near the roof; seldom quite
/// where it should be.
void DrawRegion(SceneOptions& scene, Random& random) {
  RegionOptions& region = scene.region;
  region.aimed = Chance(random, 0.75);
  region.across = random.Uniform(-0.2, 0.2);
  const double where = random.Uniform(0, 1);
  region.up = where < 0.4 ? random.Uniform(0.1, 0.3) : random.Uniform(0.3, where < 0.85 ? 0.55 : 0.75);
  region.shift_x = Within(draw::kRegionOff_px, random);
  region.shift_y = Within(draw::kRegionOff_px, random);
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

void LeaveNobodyAhead(SceneOptions& scene, Random& random) {
  scene.lead_present = false;
  scene.others.clear();
  scene.region.shift_x = Within(draw::kFreeRegionAcross_px, random);
  // Around where the road ahead is, below the horizon.
  constexpr double kUsualMiddle = 330;  // of the tools' default region, in 480 rows
  const double middle = 480 * scene.camera.horizon + Draw(draw::kFreeRegionBelow_px, random);
  scene.region.shift_y = static_cast<int>(middle - kUsualMiddle);
}

void AddQueue(SceneOptions& scene, Random& random) {
  if (!scene.others.empty()) {
    return;
  }
  VehicleOptions ahead = DrawVehicle(scene, random);
  const bool narrow = scene.lead.kind == VehicleKind::kMotorcycle;
  ahead.distance_m = scene.lead.distance_m + (narrow ? 2.2 : 4.8) + random.Uniform(0.8, 4);
  ahead.offset_m = scene.lead.offset_m + random.Uniform(-0.5, 0.5);
  scene.others.push_back(ahead);
}

}  // namespace stopngo
