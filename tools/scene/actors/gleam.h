// gleam.h: light that wanders: over the vehicle ahead, and over the whole picture.
#pragma once

#include "base/random.h"
#include "scene/stage/actor.h"

namespace stopngo {

Actors MakeHeadlampSweep(const Stage& stage, Random& random);
Actors MakeReflection(const Stage& stage, Random& random);
std::unique_ptr<ScreenEffect> MakeShade(const Stage& stage, Random& random);
std::unique_ptr<ScreenEffect> MakeBeacon(const Stage& stage, Random& random);

}  // namespace stopngo
