// scene_actor.h: what moves in a scene besides the vehicle ahead.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "scene_camera.h"
#include "scene_sheet.h"

namespace stopngo {

/// The light that falls onto things, as shares of a clear day's grey levels.
struct Illumination {
  double ambient = 1;
  double headlamp = 0;  ///< what our own headlamps add to a thing 5 m ahead
  double lamps = 0;     ///< 0 … 1, how brightly vehicles' lamps outshine their surroundings

  [[nodiscard]] double At(double distance_m) const {
    return ambient + headlamp * 50 / (25 + distance_m * distance_m);
  }
};

/// Something in the street. It is drawn in metres, x to the right and z ahead of the place of the waiting
/// camera, onto a sheet of the size of the window that the camera's centre and horizon are meant for.
class Actor {
 public:
  virtual ~Actor() = default;
  /// How far ahead it is (the nearest part of it), for drawing from back to front; nothing while it is
  /// not in the scene.
  [[nodiscard]] virtual std::optional<double> Distance(double time_s) const = 0;
  virtual void Draw(double time_s, const Camera& camera, const Illumination& light, Sheet& sheet) const = 0;
};

/// Something on the windscreen or on the picture as a whole: the camera's shake does not move it.
class ScreenEffect {
 public:
  virtual ~ScreenEffect() = default;
  virtual void Draw(double time_s, Sheet& sheet) const = 0;
};

/// What actors have to know of their scene.
struct Stage {
  int width = 800;  ///< of the whole picture, pixels
  int height = 480;
  int window_x = 0;  ///< of the part that is rendered
  int window_y = 0;
  double focal = 720;  ///< pixels
  double camera_height_m = 1.3;
  double length_s = 12;
  double event_s = 5;        ///< a moment that passing things should be in view at, roughly
  bool lead_present = true;  ///< if not, what follows is of the place that is left free for one
  double lead_half_width = 0.9;
  double lead_height = 1.45;
  double lead_offset = 0;  ///< of its middle, to the right
  std::function<double(double time_s)> lead_distance = [](double) { return 5.0; };
  double night = 0;  ///< 0 day … 1 night: beams of light are seen at night only
};

enum class ActorKind {
  kCrossing,         ///< vehicles cross beyond the vehicle ahead
  kCrossingNear,     ///< a vehicle crosses between us and the vehicle ahead
  kCrossingQueue,    ///< several cross in a row
  kTurning,          ///< a vehicle turns from a cross street into ours or out of it
  kPedestrian,       ///< one to three people cross
  kCrowd,            ///< up to thirty people
  kBystanders,       ///< people stand or stroll at the roadside
  kCyclist,          ///< a bicycle or motorcycle crosses
  kNeighbour,        ///< vehicles stand in the lanes beside the vehicle ahead
  kNeighbourStarts,  ///< one of them drives away
  kNeighbourStops,   ///< one brakes to a halt there
  kOvertaking,       ///< a vehicle passes from behind
  kOncoming,         ///< vehicles come towards us in the lane beside
  kHeadlampSweep,    ///< a beam wanders over the rear of the vehicle ahead
  kReflection,       ///< something passing is mirrored in its window and paint
  kBirds,            ///< birds, leaves or litter drift by
};

enum class OverlayKind {
  kWipers,
  kRain,   ///< streaks and spray
  kDrops,  ///< on the glass
  kSnow,
  kShade,   ///< the shadow of a cloud or of trees passes
  kBeacon,  ///< a flashing lamp lights everything up
};

struct ActorKindName {
  ActorKind kind;
  const char* name;  ///< in manifests and options
  const char* help;
};

struct OverlayKindName {
  OverlayKind kind;
  const char* name;
  const char* help;
};

std::span<const ActorKindName> ActorKinds();
std::span<const OverlayKindName> OverlayKinds();

using Actors = std::vector<std::unique_ptr<Actor>>;

/// The actors of a kind, drawn from a seed: the same on every machine.
Actors MakeActors(ActorKind kind, const Stage& stage, std::uint64_t seed);
std::unique_ptr<ScreenEffect> MakeOverlay(OverlayKind kind, const Stage& stage, std::uint64_t seed);

/// Paints the actors that are farther than a distance, or those that are nearer, from back to front.
void DrawFarther(const Actors& actors, double than_m, double time_s, const Camera& camera,
                 const Illumination& light, Sheet& sheet);
void DrawNearer(const Actors& actors, double than_m, double time_s, const Camera& camera,
                const Illumination& light, Sheet& sheet);

}  // namespace stopngo
