// pictures.h: what tests of scenes render and compare.
#pragma once

#include <cstdint>
#include <vector>

#include "scene/recipe/recipe.h"
#include "scene/scene.h"
#include "scene/script/script.h"

namespace stopngo::test {

using Luma = std::vector<std::uint8_t>;

Luma Rendered(Scene& scene, const SceneOptions& options, std::int64_t frame);
Luma Rendered(const SceneOptions& options, std::int64_t frame);

double MeanDifference(const Luma& a, const Luma& b);

/// FNV-1a.
std::uint64_t HashOf(const Luma& bytes, std::uint64_t hash = 0xcbf29ce484222325U);

/// A camera that neither shakes nor hisses: what changes is the vehicle.
SceneOptions Quiet(std::uint64_t seed);

/// A scene of a kind as it is drawn, small.
SceneOptions Drawn(SceneKind kind, std::uint64_t seed);

/// From where the camera is at the beginning to the rear of the vehicle ahead.
double DistanceOfLead(const SceneOptions& options, double time_s);

}  // namespace stopngo::test
