// driving.h: how our own vehicle drives, drawn at random.
#pragma once

#include "base/random.h"
#include "scene/recipe/recipe.h"

namespace stopngo {

/// Our own vehicle moves in one of many manners; the lead may be absent.
void AddDriving(SceneOptions& scene, Random& random);

}  // namespace stopngo
