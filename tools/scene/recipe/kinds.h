// kinds.h: what can move in a scene besides the vehicle ahead, and what can lie over its picture.
#pragma once

namespace stopngo {

enum class ActorKind {
  kCrossing,         ///< vehicles cross beyond the vehicle ahead
  kCrossingNear,     ///< a vehicle crosses between us and the vehicle ahead
  kCrossingQueue,    ///< several cross in a row
  kTurning,          ///< a vehicle turns from a cross street into ours or out of it
  kPedestrian,       ///< one to three people cross
  kCrowd,            ///< up to thirty people
  kBystanders,       ///< people stand or stroll at the roadside
  kCyclist,          ///< a bicycle or motorcycle crosses
  kNeighbour,        ///< vehicles stand in the lanes beside the vehicle ahead
  kNeighbourStarts,  ///< one of them drives away
  kNeighbourStops,   ///< one brakes to a halt there
  kOvertaking,       ///< a vehicle passes from behind
  kOncoming,         ///< vehicles come towards us in the lane beside
  kHeadlampSweep,    ///< a beam wanders over the rear of the vehicle ahead
  kReflection,       ///< something passing is mirrored in its window and paint
  kBirds,            ///< birds, leaves or litter drift by
  kDrivingIn,        ///< a vehicle comes from beside or behind into our lane, and drives off or stops
  kStream,           ///< vehicles pass without end, away from the camera or towards it
  kParking,          ///< a vehicle manoeuvres at the kerb
};

enum class OverlayKind {
  kWipers,
  kRain,   ///< streaks and spray
  kDrops,  ///< on the glass
  kSnow,
  kShade,   ///< the shadow of a cloud or of trees passes
  kBeacon,  ///< a flashing lamp lights everything up
};

}  // namespace stopngo
