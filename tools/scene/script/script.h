// script.h: kinds of scenes, and how a scene of a kind is drawn from a seed.
#pragma once

#include <cstdint>
#include <span>

#include "scene/recipe/recipe.h"

namespace stopngo {

enum class SceneKind {
  kDeparture,
  kStanding,
  kCrossing,
  kPedestrians,
  kNeighbours,
  kWipers,
  kRain,
  kBrakeLights,
  kExposure,
  kShaking,
  kDriving,
  kCreep,
  kQueue,
  kEmpty,
  kMixed,
  kOverhead,  ///< looked at from above, nobody ahead of us: vehicles and people pass
  kJoining,   ///< nobody has stood ahead of us, but somebody drives in there
  kRoadside,  ///< beside the road, with something moving all the time
};

struct SceneKindName {
  SceneKind kind;
  const char* name;  ///< in manifests and options
  const char* help;
};

std::span<const SceneKindName> SceneKinds();

/// Everything of a scene but its size, rate and window, which stay as they are by default. The same kind
/// and seed give the same scene on every machine.
SceneOptions DrawScene(SceneKind kind, std::uint64_t seed);

}  // namespace stopngo
