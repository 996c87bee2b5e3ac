// setting.h: what every scene has, drawn at random.
#pragma once

#include "base/random.h"
#include "scene/recipe/recipe.h"

namespace stopngo {

/// Light, street, camera, windscreen, sensor, lead and region: what every scene has. The lead waits.
void DrawSetting(SceneOptions& scene, Random& random);

/// Nobody is ahead, and the region lies where it may.
void LeaveNobodyAhead(SceneOptions& scene, Random& random);

/// Another vehicle waits before the lead.
void AddQueue(SceneOptions& scene, Random& random);

}  // namespace stopngo
