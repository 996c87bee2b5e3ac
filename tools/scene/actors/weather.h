// weather.h: rain and snow in the air, drops on the windscreen, and the wipers that take them away.
#pragma once

#include "base/random.h"
#include "scene/stage/actor.h"

namespace stopngo {

std::unique_ptr<ScreenEffect> MakeWipers(const Stage& stage, Random& random);
std::unique_ptr<ScreenEffect> MakeDrops(const Stage& stage, Random& random);
std::unique_ptr<ScreenEffect> MakeRain(const Stage& stage, Random& random);
std::unique_ptr<ScreenEffect> MakeSnow(const Stage& stage, Random& random);

}  // namespace stopngo
