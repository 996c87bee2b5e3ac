// cast.cpp: the table of what can move in a scene.
#include "scene/actors/cast.h"

#include <algorithm>
#include <array>

#include "base/random.h"
#include "base/streams.h"
#include "scene/actors/figure.h"
#include "scene/actors/gleam.h"
#include "scene/actors/traffic.h"
#include "scene/actors/weather.h"

namespace stopngo {
namespace {

template <typename Kind, typename Made>
struct Entry {
  Kind kind;
  Made (*make)(const Stage&, Random&);
};

constexpr std::array<Entry<ActorKind, Actors>, 19> kActors{{
    {ActorKind::kCrossing, MakeCrossing},
    {ActorKind::kCrossingNear, MakeCrossingNear},
    {ActorKind::kCrossingQueue, MakeCrossingQueue},
    {ActorKind::kTurning, MakeTurning},
    {ActorKind::kPedestrian, MakePedestrians},
    {ActorKind::kCrowd, MakeCrowd},
    {ActorKind::kBystanders, MakeBystanders},
    {ActorKind::kCyclist, MakeCyclists},
    {ActorKind::kNeighbour, MakeNeighbours},
    {ActorKind::kNeighbourStarts, MakeNeighbourStarts},
    {ActorKind::kNeighbourStops, MakeNeighbourStops},
    {ActorKind::kOvertaking, MakeOvertaking},
    {ActorKind::kOncoming, MakeOncoming},
    {ActorKind::kHeadlampSweep, MakeHeadlampSweep},
    {ActorKind::kReflection, MakeReflection},
    {ActorKind::kBirds, MakeBirds},
    {ActorKind::kDrivingIn, MakeDrivingIn},
    {ActorKind::kStream, MakeStream},
    {ActorKind::kParking, MakeParking},
}};

constexpr std::array<Entry<OverlayKind, std::unique_ptr<ScreenEffect>>, 6> kOverlays{{
    {OverlayKind::kWipers, MakeWipers},
    {OverlayKind::kRain, MakeRain},
    {OverlayKind::kDrops, MakeDrops},
    {OverlayKind::kSnow, MakeSnow},
    {OverlayKind::kShade, MakeShade},
    {OverlayKind::kBeacon, MakeBeacon},
}};

/// Draws what is made from a stream of the kind's own.
template <typename Entries, typename Kind>
auto Make(const Entries& entries, const Stream& stream, Kind kind, const Stage& stage, std::uint64_t seed) {
  Random random = RandomOf(seed, stream, static_cast<std::uint64_t>(kind));
  const auto entry =
      std::find_if(entries.begin(), entries.end(), [kind](const auto& e) { return e.kind == kind; });
  return entry->make(stage, random);
}

}  // namespace

Actors MakeActors(ActorKind kind, const Stage& stage, std::uint64_t seed) {
  return Make(kActors, stream::kActor, kind, stage, seed);
}

std::unique_ptr<ScreenEffect> MakeOverlay(OverlayKind kind, const Stage& stage, std::uint64_t seed) {
  return Make(kOverlays, stream::kOverlay, kind, stage, seed);
}

}  // namespace stopngo
