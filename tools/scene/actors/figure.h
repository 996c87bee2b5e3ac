// figure.h: people on foot and on two wheels, birds and litter.
#pragma once

#include "base/random.h"
#include "scene/stage/actor.h"

namespace stopngo {

Actors MakePedestrians(const Stage& stage, Random& random);
Actors MakeCrowd(const Stage& stage, Random& random);
Actors MakeBystanders(const Stage& stage, Random& random);
Actors MakeCyclists(const Stage& stage, Random& random);
Actors MakeBirds(const Stage& stage, Random& random);

}  // namespace stopngo
