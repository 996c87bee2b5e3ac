// traffic.h: vehicles that cross, turn, stand beside, overtake, drive in or come towards us.
#pragma once

#include "base/random.h"
#include "scene/stage/actor.h"

namespace stopngo {

Actors MakeCrossing(const Stage& stage, Random& random);
Actors MakeCrossingNear(const Stage& stage, Random& random);
Actors MakeCrossingQueue(const Stage& stage, Random& random);
Actors MakeTurning(const Stage& stage, Random& random);
Actors MakeNeighbours(const Stage& stage, Random& random);
Actors MakeNeighbourStarts(const Stage& stage, Random& random);
Actors MakeNeighbourStops(const Stage& stage, Random& random);
Actors MakeOvertaking(const Stage& stage, Random& random);
Actors MakeOncoming(const Stage& stage, Random& random);
Actors MakeDrivingIn(const Stage& stage, Random& random);
Actors MakeStream(const Stage& stage, Random& random);
Actors MakeParking(const Stage& stage, Random& random);

}  // namespace stopngo
