// events.h: what is drawn at random for a scene: its setting, and what happens in it.
#pragma once

#include <cstddef>
#include <span>

#include "base/random.h"
#include "scene/recipe/recipe.h"

namespace stopngo {

/// Light, street, camera, windscreen, sensor, lead and region: what every scene has. The lead waits.
void DrawSetting(SceneOptions& scene, Random& random);

/// The lead leaves; whoever waits before it does so earlier.
void AddDeparture(SceneOptions& scene, double start_s, Random& random);
/// The lead rolls a metre or two and stops again.
void AddCreep(SceneOptions& scene, double start_s, Random& random);
/// Another vehicle waits before the lead.
void AddQueue(SceneOptions& scene, Random& random);
/// Our own vehicle moves in one of many manners; the lead may be absent.
void AddDriving(SceneOptions& scene, Random& random);

/// Something that must not be taken for a departure happens around a moment.
using Distractor = void (*)(SceneOptions& scene, double at_s, Random& random);

void AddCrossing(SceneOptions& scene, double at_s, Random& random);
void AddPedestrians(SceneOptions& scene, double at_s, Random& random);
void AddNeighbours(SceneOptions& scene, double at_s, Random& random);
void AddWipers(SceneOptions& scene, double at_s, Random& random);
void AddRain(SceneOptions& scene, double at_s, Random& random);
void AddLamps(SceneOptions& scene, double at_s, Random& random);
void AddExposure(SceneOptions& scene, double at_s, Random& random);
void AddShaking(SceneOptions& scene, double at_s, Random& random);

/// The first of them can hide the lead.
std::span<const Distractor> Distractors();
constexpr std::size_t kHidingDistractors = 2;

/// Uniform in its logarithm, which small numbers are not lost in.
double LogUniform(Random& random, double low, double high);
/// True in a share of the cases.
inline bool Chance(Random& random, double share) { return random.Uniform(0, 1) < share; }

}  // namespace stopngo
