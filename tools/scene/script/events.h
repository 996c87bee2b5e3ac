// events.h: what happens in a scene, drawn at random.
#pragma once

#include <cstddef>
#include <span>

#include "base/random.h"
#include "scene/recipe/recipe.h"

namespace stopngo {

/// The lead leaves; whoever waits before it does so earlier.
void AddDeparture(SceneOptions& scene, double start_s, Random& random);
/// The lead rolls a metre or two and stops again.
void AddCreep(SceneOptions& scene, double start_s, Random& random);

/// Something that must not be taken for a departure happens around a moment.
using Distractor = void (*)(SceneOptions& scene, double at_s, Random& random);

void AddCrossing(SceneOptions& scene, double at_s, Random& random);
void AddPedestrians(SceneOptions& scene, double at_s, Random& random);
void AddNeighbours(SceneOptions& scene, double at_s, Random& random);
void AddDrivingIn(SceneOptions& scene, double at_s, Random& random);
void AddStream(SceneOptions& scene, double at_s, Random& random);
void AddWipers(SceneOptions& scene, double at_s, Random& random);
void AddRain(SceneOptions& scene, double at_s, Random& random);
void AddLamps(SceneOptions& scene, double at_s, Random& random);
void AddExposure(SceneOptions& scene, double at_s, Random& random);
void AddShaking(SceneOptions& scene, double at_s, Random& random);

/// The first of them can hide the lead.
std::span<const Distractor> Distractors();
constexpr std::size_t kHidingDistractors = 2;

}  // namespace stopngo
