// scene_script.cpp: kinds of scenes, and how a scene of a kind is drawn from a seed.
#include "scene_script.h"

#include <array>

#include "scene_random.h"

namespace stopngo {
namespace {

constexpr std::uint64_t kStream = 0x77;  // of random numbers: the script's

constexpr std::array<SceneKindName, 2> kKinds{{
    {SceneKind::kDeparture, "departure", "the vehicle ahead drives away"},
    {SceneKind::kStanding, "standing", "nothing happens"},
}};

}  // namespace

std::span<const SceneKindName> SceneKinds() { return kKinds; }

SceneOptions DrawScene(SceneKind kind, std::uint64_t seed) {
  Random random(seed, kStream);
  SceneOptions options;
  options.seed = seed;
  options.distance_m = random.Uniform(3, 12);
  options.acceleration = random.Uniform(0.3, 3);
  options.vibration = random.Uniform(0, 0.6);
  options.noise = random.Uniform(0.5, 4);
  options.departure_s = kind == SceneKind::kDeparture ? random.Uniform(4, 7) : options.length_s;
  return options;
}

}  // namespace stopngo
