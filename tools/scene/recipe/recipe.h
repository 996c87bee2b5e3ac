// recipe.h: everything that a scene is made from.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "scene/recipe/kinds.h"
#include "scene/recipe/light.h"

namespace stopngo {

// Lengths in metres, times in seconds, speeds in metres a second unless named otherwise. The defaults are
// a street by day in which a car stands 5 m ahead and leaves at second 5.

/// A change to another speed: the acceleration builds up, holds, and fades out again.
struct SpeedChange {
  double start_s;
  double speed;  ///< that is reached
  double acceleration;
  double build_up_s = 0.8;  ///< clutch or converter: full acceleration is not there at once
};

/// Changes that begin before the one before has ended begin at its end.
struct MotionOptions {
  double speed = 0;  ///< at the beginning
  std::vector<SpeedChange> changes;
};

constexpr double kTownSpeed = 13.9;   // 50 km/h
constexpr double kBrakesOff_s = 0.4;  // the foot leaves the brake before the vehicle moves

enum class VehicleKind {
  kHatchback,
  kSaloon,
  kMinivan,
  kOffRoad,
  kTransporter,
  kLorry,
  kBus,
  kTram,
  kMotorcycle
};

enum class Indicator { kNone, kLeft, kRight, kHazard };

struct VehicleOptions {
  std::optional<VehicleKind> kind;  ///< unless given, one of the cars, drawn from the seed
  std::optional<double> tone;       ///< grey level of the body by day; unless given drawn from the seed
  double dirt = 4.5;                ///< grey levels of irregularity on the body
  double distance_m = 5;            ///< from the camera to its rear at the beginning
  double offset_m = 0;              ///< of its middle to the right of the camera
  double heading = 0;               ///< turns to the right of straight ahead
  MotionOptions motion{0, {{5, kTownSpeed, 1.2, 0.8}}};
  double turn_after_m = 0;        ///< where it begins to turn off
  double turn_radius_m = 0;       ///< positive: to the right; 0: it drives straight on
  bool braking = true;            ///< at the beginning
  bool brakes_by_motion = false;  ///< lit while it slows down or stands, instead of what these two say
  std::vector<double> brake_switches_s{5 - kBrakesOff_s};
  bool tail_lamps = false;
  Indicator indicator = Indicator::kNone;
  double indicator_from_s = 0, indicator_to_s = 1e9;
  double rock_m = 0;    ///< by how far its body rocks on its springs while people get in
  double rock_s = 1e9;  ///< when that begins
  double boot_s = 1e9;  ///< when its boot is opened
};

struct Jolt {
  double start_s;
  double pixels;  ///< upwards at first
};

struct CameraOptions {
  double height_m = 1.3;
  double focal = 0.9;       ///< in widths of the picture
  double horizon = 0.52;    ///< in heights of the picture
  double yaw = 0;           ///< turns to the right of straight ahead
  double vibration = 0.4;   ///< largest shake by the engine, pixels
  double gusts = 0;         ///< largest sway by wind and by people inside, pixels
  double drift = 0;         ///< largest slow displacement, pixels
  double hand = 0;          ///< what a stabiliser leaves of a hand's sway, pixels
  double road_shake = 1.5;  ///< largest shake at 10 m/s, pixels
  std::vector<Jolt> jolts;
};

/// What lies between the lens and the street.
struct WindscreenOptions {
  double bonnet = 0;       ///< part of the picture's height that the own bonnet covers
  double reflections = 0;  ///< of the dashboard in the windscreen, grey levels
  double dirt = 0;         ///< share of light that spots take away at most
};

struct WorldOptions {
  enum class Style { kStreet, kOpen, kWall, kTunnel, kMotorway } style = Style::kStreet;
  double street_end_m = 140;  ///< where houses, a wall or trees close the view
  double contrast = 1;        ///< of surfaces
  double brightness = 0;      ///< added to their grey levels
};

/// A change of exposure: from start_s over ramp_s all light is multiplied by factor.
struct ExposureChange {
  double start_s;
  double ramp_s;
  double factor;
};

struct SensorOptions {
  double noise = 2;  ///< standard deviation at a middle grey, grey levels
  double contrast = 1;
  double gain = 1;
  double blur = 0;  ///< share of light that goes to a neighbour on each side, 0 … 0.3
  double vignette = 0;
  double shutter_s = 0.012;  ///< while it is open, what moves is smeared
  std::vector<ExposureChange> exposure;
  double source_fps = 0;   ///< unless 0: the rate of a recording that was made to the scene's by repeating
  double compression = 0;  ///< 0: none; 1: strong
  double refresh_s = 2;    ///< time between pictures that are coded without the one before
};

/// How the region of interest was placed, relative to the place that it should have.
struct RegionOptions {
  bool aimed = false;  ///< otherwise the tools' default where that lies on the vehicle
  double across = 0;   ///< from the middle of the rear, in widths of it
  double up = 0.5;     ///< its middle: 0 at the road, 1 at the roof
  int shift_x = 0, shift_y = 0;
};

/// What moves besides, from a seed of its own.
struct ActorOptions {
  ActorKind kind;
  std::uint64_t seed;
  double event_s;  ///< when it should be in view, roughly
};

struct OverlayOptions {
  OverlayKind kind;
  std::uint64_t seed;
  double event_s;
};

struct SceneOptions {
  int width = 800;  ///< pixels
  int height = 480;
  double fps = 25;
  double length_s = 12;
  std::uint64_t seed = 1;  ///< everything random that is not told below
  bool lead_present = true;
  VehicleOptions lead;
  std::vector<VehicleOptions> others;
  MotionOptions ego;          ///< along the street
  MotionOptions ego_turning;  ///< speeds in turns a second, to the right
  std::vector<ActorOptions> actors;
  std::vector<OverlayOptions> overlays;
  Light light;
  WorldOptions world;
  CameraOptions camera;
  WindscreenOptions windscreen;
  SensorOptions sensor;
  RegionOptions region;
};

/// Makes a vehicle wait until it starts, with its brakes on; a time past the scene's end: for ever.
inline void LeaveAt(VehicleOptions& vehicle, double start_s, double acceleration, double build_up_s = 0.8,
                    double speed = kTownSpeed) {
  vehicle.motion = {0, {{start_s, speed, acceleration, build_up_s}}};
  vehicle.braking = true;
  vehicle.brake_switches_s = {start_s - kBrakesOff_s};
}

}  // namespace stopngo
